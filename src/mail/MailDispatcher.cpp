#include "MailDispatcher.h"

namespace Quillon {

MailDispatcher::MailDispatcher(Preferences &preferences, MailPassword *password, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_password(password)
{ }

SimpleSMTP *MailDispatcher::send(const QString &body, const QString &subject)
{
    auto *delivery = new SimpleSMTP(this);
    ++m_inFlight;
    connect(delivery, &SimpleSMTP::finished, this, [this, delivery] {
        delivery->deleteLater();
        if (--m_inFlight == 0)
            Q_EMIT allFinished();
    });
    delivery->sendMail(*this, body, subject);
    return delivery;
}

void MailDispatcher::closeIdle()
{
    for (SimpleSMTP *delivery : findChildren<SimpleSMTP *>(Qt::FindDirectChildrenOnly))
        delivery->closeWhenIdle();
}

} // namespace Quillon
