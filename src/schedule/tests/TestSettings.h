#pragma once

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

// Points the settings file at a fresh folder; call before the first Preferences is made.
class TestSettings
{
public:
    TestSettings() { qputenv("XDG_CONFIG_HOME", m_dir.path().toUtf8()); }
    QString configDir() const { return m_dir.path() + QStringLiteral("/Quillon"); }
    QString file() const { return configDir() + QStringLiteral("/Quillon.conf"); }
    // Another process's view of the file: written at once, without our cache.
    void writeRaw(const QByteArray &ini) const
    {
        QDir().mkpath(configDir());
        QFile f(file());
        f.open(QIODevice::WriteOnly | QIODevice::Truncate);
        f.write(ini);
    }
    QVariant read(const QString &key) const
    {
        QSettings s(file(), QSettings::IniFormat);
        return s.value(key);
    }

private:
    QTemporaryDir m_dir;
};
