#pragma once

#include "Repeat.h"

#include <QGroupBox>

#include <functional>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QStackedWidget;
class QTimeEdit;

namespace Quillon {

// The Repeat section of the Date & Time window: a common rule by its parts, or any rule as text,
// when it ends and what to do when its time passed unseen. The next five times show as it is
// edited; Apply gives the selected rows the rule.
class RepeatEditor final : public QGroupBox
{
    Q_OBJECT
public:
    enum Kind { Never, Daily, Weekdays, Weekly, MonthDay, LastDay, NthWeekday, Hours, Custom };
    Q_ENUM(Kind)

    RepeatEditor(std::function<QDateTime()> now, QWidget *parent = nullptr);
    // The launch date the picker shows: the rule's start, its time of day and first day.
    void setStart(const QDateTime &start);
    // What the selected row has.
    void showRepeat(const Repeat &repeat);
    // Says why the rows could not take the rule.
    void showProblem(const QString &problem);

Q_SIGNALS:
    // An empty rule: the rows repeat by the global period again.
    void applied(const Quillon::Repeat &rule, const Quillon::MissedPolicy &missed);

private:
    QString ruleText() const;
    std::optional<Repeat> rule(QString *why) const;
    MissedPolicy missed() const;
    void refresh();

    std::function<QDateTime()> m_now;
    QDateTime m_start;
    QComboBox *m_kind = nullptr;
    QStackedWidget *m_parts = nullptr;
    QList<QCheckBox *> m_days;
    QSpinBox *m_monthDay = nullptr;
    QComboBox *m_ordinal = nullptr;
    QComboBox *m_weekday = nullptr;
    QSpinBox *m_everyHours = nullptr;
    QTimeEdit *m_from = nullptr;
    QTimeEdit *m_to = nullptr;
    QLineEdit *m_custom = nullptr;
    QComboBox *m_ends = nullptr;
    QSpinBox *m_times = nullptr;
    QDateEdit *m_until = nullptr;
    QComboBox *m_zone = nullptr;
    QComboBox *m_missed = nullptr;
    QSpinBox *m_lateMinutes = nullptr;
    QLabel *m_preview = nullptr;
    QPushButton *m_apply = nullptr;
};

} // namespace Quillon
