#include "RepeatEditor.h"

#include "MediumDateFormat.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTimeEdit>
#include <QTimeZone>

namespace Quillon {
namespace {
const char *const DayCodes[] = { "MO", "TU", "WE", "TH", "FR", "SA", "SU" };

QWidget *row(QWidget *parent, std::initializer_list<QWidget *> widgets)
{
    auto *box = new QWidget(parent);
    auto *layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *w : widgets)
        layout->addWidget(w);
    layout->addStretch(1);
    return box;
}
} // namespace

RepeatEditor::RepeatEditor(std::function<QDateTime()> now, QWidget *parent)
    : QGroupBox(tr("Repeat"), parent)
    , m_now(std::move(now))
{
    setObjectName(QStringLiteral("repeatEditor"));
    auto *form = new QFormLayout(this);

    m_kind = new QComboBox(this);
    m_kind->setObjectName(QStringLiteral("repeatKind"));
    m_kind->addItems({ tr("Never (the period in Preferences)"), tr("Every day"), tr("Weekdays"), tr("Every week on…"), tr("Every month on day…"),
        tr("Every month on the last day"), tr("Every month on the…"), tr("Every few hours between…"), tr("Custom rule…") });
    form->addRow(tr("Re&peat:"), m_kind);

    m_parts = new QStackedWidget(this);
    m_parts->addWidget(new QWidget(m_parts)); // nothing more to say
    auto *days = new QWidget(m_parts);
    auto *daysLayout = new QHBoxLayout(days);
    daysLayout->setContentsMargins(0, 0, 0, 0);
    for (int day = 1; day <= 7; ++day) {
        auto *box = new QCheckBox(QLocale().dayName(day, QLocale::ShortFormat), days);
        box->setObjectName(QStringLiteral("day%1").arg(day));
        m_days << box;
        daysLayout->addWidget(box);
    }
    m_parts->addWidget(days);
    m_monthDay = new QSpinBox(this);
    m_monthDay->setObjectName(QStringLiteral("monthDay"));
    m_monthDay->setRange(1, 31);
    m_parts->addWidget(row(m_parts, { m_monthDay }));
    m_ordinal = new QComboBox(this);
    m_ordinal->addItems({ tr("first"), tr("second"), tr("third"), tr("fourth"), tr("last") });
    m_weekday = new QComboBox(this);
    for (int day = 1; day <= 7; ++day)
        m_weekday->addItem(QLocale().dayName(day));
    m_parts->addWidget(row(m_parts, { m_ordinal, m_weekday }));
    m_everyHours = new QSpinBox(this);
    m_everyHours->setObjectName(QStringLiteral("everyHours"));
    m_everyHours->setRange(1, 12);
    m_everyHours->setValue(2);
    m_everyHours->setPrefix(tr("every "));
    m_everyHours->setSuffix(tr(" h"));
    m_from = new QTimeEdit(QTime(9, 0), this);
    m_to = new QTimeEdit(QTime(17, 0), this);
    for (QTimeEdit *edit : { m_from, m_to })
        edit->setDisplayFormat(QStringLiteral("HH:mm"));
    m_parts->addWidget(row(m_parts, { m_everyHours, new QLabel(tr("from"), this), m_from, new QLabel(tr("to"), this), m_to }));
    m_custom = new QLineEdit(this);
    m_custom->setObjectName(QStringLiteral("customRule"));
    m_custom->setPlaceholderText(QStringLiteral("FREQ=MONTHLY;BYDAY=2MO"));
    m_custom->setAccessibleName(tr("Custom rule"));
    m_parts->addWidget(m_custom);
    form->addRow(QString(), m_parts);

    m_ends = new QComboBox(this);
    m_ends->setObjectName(QStringLiteral("repeatEnds"));
    m_ends->addItems({ tr("Never"), tr("After"), tr("On") });
    m_times = new QSpinBox(this);
    m_times->setRange(1, 100'000);
    m_times->setValue(10);
    m_times->setSuffix(tr(" times"));
    m_until = new QDateEdit(QDate::currentDate().addMonths(1), this);
    m_until->setCalendarPopup(true);
    form->addRow(tr("&Ends:"), row(this, { m_ends, m_times, m_until }));

    // By default a rule follows the computer's zone; a zone of its own keeps "07:00 in Berlin"
    // wherever the laptop is.
    m_zone = new QComboBox(this);
    m_zone->setObjectName(QStringLiteral("repeatZone"));
    m_zone->addItem(tr("The computer's"));
    for (const QByteArray &id : QTimeZone::availableTimeZoneIds())
        m_zone->addItem(QString::fromUtf8(id), id);
    form->addRow(tr("Time &zone:"), m_zone);

    m_missed = new QComboBox(this);
    m_missed->setObjectName(QStringLiteral("missedPolicy"));
    m_missed->addItems({ tr("As in Preferences"), tr("Skip it"), tr("Run it once"), tr("Run it if less late than") });
    m_lateMinutes = new QSpinBox(this);
    m_lateMinutes->setRange(1, 24 * 60);
    m_lateMinutes->setValue(60);
    m_lateMinutes->setSuffix(tr(" min"));
    form->addRow(tr("If m&issed:"), row(this, { m_missed, m_lateMinutes }));

    m_preview = new QLabel(this);
    m_preview->setObjectName(QStringLiteral("repeatPreview"));
    m_preview->setWordWrap(true);
    m_preview->setTextFormat(Qt::PlainText);
    m_preview->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(m_preview);
    m_apply = new QPushButton(tr("Appl&y Repeat"), this);
    m_apply->setObjectName(QStringLiteral("applyRepeat"));
    form->addRow(QString(), row(this, { m_apply }));

    for (QComboBox *box : { m_kind, m_ordinal, m_weekday, m_ends, m_zone, m_missed })
        connect(box, &QComboBox::currentIndexChanged, this, &RepeatEditor::refresh);
    for (QCheckBox *box : std::as_const(m_days))
        connect(box, &QCheckBox::toggled, this, &RepeatEditor::refresh);
    for (QSpinBox *box : { m_monthDay, m_everyHours, m_times, m_lateMinutes })
        connect(box, &QSpinBox::valueChanged, this, &RepeatEditor::refresh);
    for (QDateTimeEdit *edit : std::initializer_list<QDateTimeEdit *> { m_from, m_to, m_until })
        connect(edit, &QDateTimeEdit::dateTimeChanged, this, &RepeatEditor::refresh);
    connect(m_custom, &QLineEdit::textChanged, this, &RepeatEditor::refresh);
    connect(m_apply, &QPushButton::clicked, this, [this] {
        QString why;
        const std::optional<Repeat> chosen = rule(&why);
        if (chosen)
            Q_EMIT applied(*chosen, missed());
    });
    refresh();
}

void RepeatEditor::setStart(const QDateTime &start)
{
    m_start = start;
    refresh();
}

void RepeatEditor::showRepeat(const Repeat &repeat)
{
    static const QHash<QString, int> known { { QStringLiteral("FREQ=DAILY"), Daily }, { QStringLiteral("FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR"), Weekdays },
        { QStringLiteral("FREQ=MONTHLY;BYMONTHDAY=-1"), LastDay } };
    const QSignalBlocker quiet(this);
    const int kind = repeat.hasRule() ? known.value(repeat.rule(), Custom) : Never;
    m_kind->setCurrentIndex(kind);
    if (kind == Custom)
        m_custom->setText(repeat.rule());
    m_ends->setCurrentIndex(0);
    m_zone->setCurrentIndex(std::max(0, m_zone->findData(repeat.zoneId())));
    const MissedPolicy policy = repeat.missed;
    m_missed->setCurrentIndex(int(policy.kind));
    if (policy.kind == MissedPolicy::Kind::Within)
        m_lateMinutes->setValue(int(std::max<qint64>(1, policy.withinSecs / 60)));
    refresh();
}

void RepeatEditor::showProblem(const QString &problem)
{
    m_preview->setText(tr("Not applied: %1").arg(problem));
}

QString RepeatEditor::ruleText() const
{
    QString text;
    switch (Kind(m_kind->currentIndex())) {
    case Never:
        return {};
    case Daily:
        text = QStringLiteral("FREQ=DAILY");
        break;
    case Weekdays:
        text = QStringLiteral("FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR");
        break;
    case Weekly: {
        QStringList codes;
        for (qsizetype i = 0; i < m_days.size(); ++i) {
            if (m_days.at(i)->isChecked())
                codes << QLatin1String(DayCodes[i]);
        }
        text = QStringLiteral("FREQ=WEEKLY;BYDAY=") + codes.join(QLatin1Char(','));
        break;
    }
    case MonthDay:
        text = QStringLiteral("FREQ=MONTHLY;BYMONTHDAY=%1").arg(m_monthDay->value());
        break;
    case LastDay:
        text = QStringLiteral("FREQ=MONTHLY;BYMONTHDAY=-1");
        break;
    case NthWeekday: {
        const int ordinal = m_ordinal->currentIndex() == 4 ? -1 : m_ordinal->currentIndex() + 1;
        text = QStringLiteral("FREQ=MONTHLY;BYDAY=%1%2").arg(ordinal).arg(QLatin1String(DayCodes[m_weekday->currentIndex()]));
        break;
    }
    case Hours: {
        QStringList hours;
        for (int hour = m_from->time().hour(); hour <= m_to->time().hour(); hour += m_everyHours->value())
            hours << QString::number(hour);
        text = QStringLiteral("FREQ=DAILY;BYHOUR=%1;BYMINUTE=%2;BYSECOND=0").arg(hours.join(QLatin1Char(','))).arg(m_from->time().minute());
        break;
    }
    case Custom:
        // A rule written out says how it ends itself.
        return m_custom->text().trimmed();
    }
    if (m_ends->currentIndex() == 1)
        text += QStringLiteral(";COUNT=%1").arg(m_times->value());
    else if (m_ends->currentIndex() == 2)
        text += QStringLiteral(";UNTIL=%1T235959").arg(m_until->date().toString(QStringLiteral("yyyyMMdd")));
    return text;
}

std::optional<Repeat> RepeatEditor::rule(QString *why) const
{
    const QString text = ruleText();
    if (m_kind->currentIndex() == Never)
        return Repeat();
    if (m_kind->currentIndex() == Weekly && !std::any_of(m_days.cbegin(), m_days.cend(), [](QCheckBox *b) { return b->isChecked(); })) {
        *why = tr("choose at least one day");
        return std::nullopt;
    }
    if (text.isEmpty()) {
        *why = tr("write a rule, such as FREQ=MONTHLY;BYDAY=2MO");
        return std::nullopt;
    }
    std::optional<Repeat> repeat = Repeat::fromRule(text, why);
    if (!repeat || repeat->hasStart())
        return repeat;
    const QDateTime start = m_start.isValid() ? m_start : m_now();
    const QByteArray zone = m_zone->currentData().toByteArray();
    if (zone.isEmpty() || !repeat->setZoneId(zone)) {
        repeat->anchorAt(start);
        return repeat;
    }
    // The time the picker shows, on the clocks of that zone.
    const QDateTime local = start.toLocalTime();
    repeat->anchorAt(wallClockInstant(QDateTime(local.date(), local.time(), Qt::UTC), QTimeZone(zone)));
    return repeat;
}

MissedPolicy RepeatEditor::missed() const
{
    const auto kind = MissedPolicy::Kind(m_missed->currentIndex());
    return { kind, kind == MissedPolicy::Kind::Within ? qint64(m_lateMinutes->value()) * 60 : 0 };
}

void RepeatEditor::refresh()
{
    const int kind = m_kind->currentIndex();
    static const int pages[] = { 0, 0, 0, 1, 2, 0, 3, 4, 5 };
    m_parts->setCurrentIndex(pages[kind]);
    m_parts->setVisible(pages[kind] != 0);
    const bool ends = kind != Never && kind != Custom;
    m_zone->setEnabled(kind != Never);
    m_ends->setEnabled(ends);
    m_times->setVisible(ends && m_ends->currentIndex() == 1);
    m_until->setVisible(ends && m_ends->currentIndex() == 2);
    m_lateMinutes->setVisible(m_missed->currentIndex() == int(MissedPolicy::Kind::Within));
    QString why;
    const std::optional<Repeat> repeat = rule(&why);
    if (!repeat) {
        m_preview->setText(tr("Refused: %1").arg(why));
        m_apply->setEnabled(false);
        return;
    }
    m_apply->setEnabled(true);
    if (!repeat->hasRule()) {
        m_preview->setText(tr("The item opens at its launch time, and again by the period in Preferences if one is set."));
        return;
    }
    QStringList next;
    for (const QDateTime &moment : repeat->upcoming(m_now(), 5))
        next << formatMediumDateTime(moment);
    m_preview->setText(
        next.isEmpty() ? tr("The rule has no time after now.") : repeat->describe() + QLatin1Char('\n') + tr("Next: %1").arg(next.join(QStringLiteral("; "))));
}

} // namespace Quillon
