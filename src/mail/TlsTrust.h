#pragma once

namespace Quillon {

// Qt reads only the system's certificate store; OpenSSL's own tools also honour SSL_CERT_FILE and
// SSL_CERT_DIR, and users behind a private authority (and our tests) rely on them. Changes the
// process-wide TLS defaults, so it is called once at start-up, before any connection.
void trustCertificatesFromEnvironment();

} // namespace Quillon
