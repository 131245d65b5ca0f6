#include "StatusImages.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace Quillon {
namespace {

enum class Status { Done, Pending, Problem };

class StatusIconEngine final : public QIconEngine
{
public:
    explicit StatusIconEngine(Status status)
        : m_status(status)
    { }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const qreal side = qMin(rect.width(), rect.height());
        const QRectF box(rect.x() + (rect.width() - side) / 2.0, rect.y() + (rect.height() - side) / 2.0, side, side);
        const QRectF disc = box.adjusted(side * 0.06, side * 0.06, -side * 0.06, -side * 0.06);
        QColor fill = m_status == Status::Done ? QColor(0x2e, 0x9e, 0x4f) : m_status == Status::Pending ? QColor(0xe0, 0x8e, 0x0b) : QColor(0xc6, 0x28, 0x28);
        if (mode == QIcon::Disabled)
            fill = QColor(0x9a, 0x9a, 0x9a);
        painter->setPen(Qt::NoPen);
        painter->setBrush(fill);
        painter->drawEllipse(disc);

        QPen pen(Qt::white, side * 0.11, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        const auto at = [&](qreal fx, qreal fy) { return QPointF(box.x() + fx * side, box.y() + fy * side); };
        if (m_status == Status::Problem) {
            // An exclamation mark: something went wrong, told apart from the check by shape too.
            painter->drawLine(at(0.5, 0.26), at(0.5, 0.56));
            painter->drawPoint(at(0.5, 0.73));
        } else if (m_status == Status::Done) {
            QPainterPath tick;
            tick.moveTo(at(0.28, 0.52));
            tick.lineTo(at(0.44, 0.68));
            tick.lineTo(at(0.73, 0.36));
            painter->drawPath(tick);
        } else {
            // A clock face: the hands at ten past twelve.
            painter->drawLine(at(0.5, 0.5), at(0.5, 0.26));
            painter->drawLine(at(0.5, 0.5), at(0.68, 0.6));
        }
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pm(size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        paint(&p, QRect(QPoint(), size), mode, state);
        return pm;
    }

    QIconEngine *clone() const override { return new StatusIconEngine(m_status); }
    QString key() const override { return QStringLiteral("QuillonStatus"); }

private:
    Status m_status;
};

} // namespace

QIcon imageNamed(const QString &name)
{
    static const QIcon check(new StatusIconEngine(Status::Done));
    static const QIcon pending(new StatusIconEngine(Status::Pending));
    static const QIcon problem(new StatusIconEngine(Status::Problem));
    if (name == QLatin1String("Check.tiff"))
        return check;
    if (name == QLatin1String("Pending.tiff"))
        return pending;
    if (name == QLatin1String("Problem.tiff"))
        return problem;
    return {};
}

} // namespace Quillon
