#include "sdk/core/http/CertificateTrouble.h"

namespace Mirqos::Http {

std::string Describe(CertificateTrouble trouble, const std::string& host) {
    switch (trouble) {
        case CertificateTrouble::unknown:
            return {};
        case CertificateTrouble::untrusted:
            return "the certificate of " + host + " comes from an authority that is not trusted";
        case CertificateTrouble::expired:
            return "the certificate of " + host + " has expired";
        case CertificateTrouble::notYetValid:
            return "the certificate of " + host + " is not valid yet";
        case CertificateTrouble::wrongHost:
            return "the certificate is not for the host name " + host;
        case CertificateTrouble::revoked:
            return "the certificate of " + host + " has been revoked";
    }
    return {};
}

}  // namespace Mirqos::Http
