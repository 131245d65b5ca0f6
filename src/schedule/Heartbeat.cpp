#include "Heartbeat.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace Quillon {

Heartbeat::Heartbeat(QString fileName)
    : m_fileName(std::move(fileName))
{ }

Heartbeat::Last Heartbeat::read(const QString &settingsFile) const
{
    Last last;
    QFile file(m_fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        const QFileInfo settings(settingsFile);
        last.savedAt = settings.lastModified().toUTC();
        if (settings.exists())
            last.runningUntil = last.savedAt;
        return last;
    }
    // "running=<ms>" (empty when stopped), "clean=<0|1>", "saved=<ms>", a line each.
    for (const QByteArray &line : file.read(4096).split('\n')) {
        const qsizetype equals = line.indexOf('=');
        const QByteArray key = line.left(equals), value = equals < 0 ? QByteArray() : line.mid(equals + 1);
        bool number = false;
        const qint64 ms = value.toLongLong(&number);
        if (key == "running" && number)
            last.runningUntil = QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC);
        else if (key == "clean")
            last.quitNormally = value == "1";
        else if (key == "saved" && number)
            last.savedAt = QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC);
    }
    return last;
}

void Heartbeat::begin(const QDateTime &now, bool running)
{
    m_savedAt = read({}).savedAt;
    beat(now, running);
}

void Heartbeat::beat(const QDateTime &now, bool running)
{
    write(running ? std::optional(now) : std::nullopt, false);
}

void Heartbeat::quit(const QDateTime &now, bool running)
{
    m_savedAt = now;
    write(running ? std::optional(now) : std::nullopt, true);
}

// A few bytes, written often: to a new file renamed over the old, without an fsync (what a
// power cut takes is at most the last beats, not the file).
void Heartbeat::write(const std::optional<QDateTime> &runningUntil, bool quitNormally)
{
    QDir().mkpath(QFileInfo(m_fileName).absolutePath());
    const QByteArray text = "running=" + (runningUntil ? QByteArray::number(runningUntil->toMSecsSinceEpoch()) : QByteArray()) + "\nclean="
        + (quitNormally ? "1" : "0") + "\nsaved=" + (m_savedAt.isValid() ? QByteArray::number(m_savedAt.toMSecsSinceEpoch()) : QByteArray()) + '\n';
    const QString temporary = m_fileName + QStringLiteral(".new");
    QFile file(temporary);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text) != text.size()) {
        file.remove();
        return;
    }
    file.close();
    std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(m_fileName).constData());
}

} // namespace Quillon
