#include "Preferences.h"

namespace Quillon {

QString Preferences::stringValue(QAnyStringView key) const
{
    const QVariant v = value(key);
    return v.isValid() ? v.toString() : QString();
}

bool Preferences::toBool(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return value.toDouble() != 0;
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        // As a hand-edited file would mean it: "true", "yes", or a number other than zero.
        const QString text = value.toString().trimmed().toLower();
        if (text == QLatin1String("true") || text == QLatin1String("yes") || text == QLatin1String("on"))
            return true;
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        return isNumber && number != 0;
    }
    default:
        return false;
    }
}

} // namespace Quillon
