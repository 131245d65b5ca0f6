#pragma once

#include <QByteArray>
#include <QString>

namespace Quillon {

// A plain-text message from the address to itself, as GMime writes it: UTF-8 text in base64,
// the subject encoded where it needs to be, with Date and Message-Id.
QByteArray composeMailMessage(const QString &address, const QString &subject, const QString &body);

} // namespace Quillon
