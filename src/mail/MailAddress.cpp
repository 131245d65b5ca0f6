#include "MailAddress.h"

#include <QCoreApplication>

namespace Quillon {

QString addressProblem(QStringView address)
{
    for (const QChar c : address) {
        const char16_t u = c.unicode();
        if (u < 0x20 || u == 0x7f || (u >= 0x80 && u < 0xa0))
            return QString::fromLatin1(QT_TRANSLATE_NOOP("MailAddress", "it holds a control character (a line break pasted with it?)"));
        if (u == ' ' || c.isSpace())
            return QString::fromLatin1(QT_TRANSLATE_NOOP("MailAddress", "it holds a space"));
        if (u == '<' || u == '>')
            return QString::fromLatin1(QT_TRANSLATE_NOOP("MailAddress", "it holds an angle bracket"));
        if (c.category() == QChar::Other_Format)
            return QString::fromLatin1(QT_TRANSLATE_NOOP("MailAddress", "it holds an invisible formatting character"));
    }
    // Nothing more is asked of an address: what the server makes of it is the server's to say.
    return {};
}

bool needsSmtpUtf8(QStringView address)
{
    for (const QChar c : address) {
        if (c.unicode() > 0x7f)
            return true;
    }
    return false;
}

} // namespace Quillon
