#pragma once

#include "SettingsFile.h"
#include "SettingsKeys.h"

namespace Quillon {

// The user's settings and the saved schedule, read and written as typed values. An absent key
// reads as false, 0 or nothing, except where SettingsKeys gives it a default.
class Preferences final
{
    Q_DISABLE_COPY_MOVE(Preferences)
public:
    Preferences() = default;

    bool contains(QAnyStringView key) const { return m_file.contains(key); }
    QVariant value(QAnyStringView key) const { return m_file.value(key); }
    bool boolValue(QAnyStringView key) const { return contains(key) ? toBool(value(key)) : Keys::defaultBool(key); }
    int intValue(QAnyStringView key) const { return value(key).toInt(); }
    QString stringValue(QAnyStringView key) const;

    void setValue(QAnyStringView key, const QVariant &value) { m_file.setValue(key, value); }
    void setValues(const QList<std::pair<QAnyStringView, QVariant>> &values) { m_file.setValues(values); }
    void remove(QAnyStringView key) { m_file.remove(key); }
    void flush() { m_file.flush(); }
    void synchronize() { m_file.synchronize(); }
    QString fileName() const { return m_file.fileName(); }
    QString windowStateFileName(bool forWriting = true) const { return m_file.windowStateFileName(forWriting); }
    void makeFolder() const { m_file.makeFolder(); }

    bool rememberItems() const { return boolValue(Keys::RememberItems); }
    bool addFolderFiles() const { return boolValue(Keys::AddFolderFiles); }
    bool addFolderFilesRecursively() const { return boolValue(Keys::AddFolderFilesRecursively); }

    // A stored boolean as the settings file may hold it: a real boolean, a number, or text.
    static bool toBool(const QVariant &value);
    static bool isReadable(const QVariant &value) { return SettingsFile::isReadable(value); }
    static bool setAsideIfNotRegular(const QString &path) { return SettingsFile::setAsideIfNotRegular(path); }

private:
    SettingsFile m_file;
};

} // namespace Quillon
