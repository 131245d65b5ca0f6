#pragma once

#include <QString>

namespace Quillon {

// Why an address cannot stand in an SMTP envelope (MAIL FROM:<…>, RCPT TO:<…>), in English for
// the log; empty when it can. A pasted CR or LF, an angle bracket or a space would otherwise turn
// the address into commands or parameters of its own. Only that is checked: the address is not
// otherwise validated. The text is English; QCoreApplication::translate("MailAddress", …) gives
// the user's language.
QString addressProblem(QStringView address);

// Outside ASCII: only a server that offers SMTPUTF8 takes it in the envelope.
bool needsSmtpUtf8(QStringView address);

} // namespace Quillon
