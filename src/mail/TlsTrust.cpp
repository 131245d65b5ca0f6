#include "TlsTrust.h"

#include <QSslCertificate>
#include <QSslConfiguration>

namespace Quillon {

void trustCertificatesFromEnvironment()
{
    QList<QSslCertificate> extra;
    const QString file = qEnvironmentVariable("SSL_CERT_FILE");
    const QString dir = qEnvironmentVariable("SSL_CERT_DIR");
    if (!file.isEmpty())
        extra += QSslCertificate::fromPath(file, QSsl::Pem);
    if (!dir.isEmpty())
        extra += QSslCertificate::fromPath(dir + QStringLiteral("/*"), QSsl::Pem, QSslCertificate::PatternSyntax::Wildcard);
    if (extra.isEmpty())
        return;
    QSslConfiguration conf = QSslConfiguration::defaultConfiguration();
    conf.setCaCertificates(QSslConfiguration::systemCaCertificates() + extra);
    QSslConfiguration::setDefaultConfiguration(conf);
}

} // namespace Quillon
