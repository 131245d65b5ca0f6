#include "Preferences.h"

#include "Log.h"
#include "SettingsKeys.h"

#include <QFileInfo>

#include <sys/stat.h>

namespace Quillon {

Preferences::Preferences()
    : m_settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Quillon"), QStringLiteral("Quillon"))
{
}

QString Preferences::stringValue(QAnyStringView key) const
{
    const QVariant v = m_settings.value(key);
    return v.isValid() ? v.toString() : QString();
}

void Preferences::setValue(QAnyStringView key, const QVariant &value)
{
    m_settings.setValue(key, value);
    writeOut();
}

void Preferences::setValues(const QList<std::pair<QAnyStringView, QVariant>> &values)
{
    for (const auto &[key, value] : values)
        m_settings.setValue(key, value);
    writeOut();
}

void Preferences::synchronize()
{
    m_settings.sync();
}

void Preferences::writeOut()
{
    // QSettings writes a temporary file and renames it; with umask 077 neither it nor a new folder
    // is ever readable by others, even for a moment.
    const mode_t old = ::umask(077);
    m_settings.sync();
    ::umask(old);
    const QByteArray file = QFile::encodeName(m_settings.fileName());
    const QByteArray dir = QFile::encodeName(QFileInfo(m_settings.fileName()).absolutePath());
    ::chmod(dir.constData(), 0700);
    ::chmod(file.constData(), 0600);
    if (m_settings.status() != QSettings::NoError)
        systemLog(QStringLiteral("Could not write the settings file %1").arg(m_settings.fileName()));
}

bool Preferences::rememberItems() const
{
    if (!m_settings.contains(Keys::RememberItems))
        return true;
    return boolValue(Keys::RememberItems);
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
