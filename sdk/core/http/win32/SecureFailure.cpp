#include "sdk/core/http/win32/SecureFailure.h"

namespace Mirqos::Http {

bool IsSecureFailure(DWORD error) {
    switch (error) {
        case ERROR_WINHTTP_SECURE_FAILURE:
        case ERROR_WINHTTP_SECURE_CERT_DATE_INVALID:
        case ERROR_WINHTTP_SECURE_CERT_CN_INVALID:
        case ERROR_WINHTTP_SECURE_INVALID_CA:
        case ERROR_WINHTTP_SECURE_CERT_REV_FAILED:
        case ERROR_WINHTTP_SECURE_CHANNEL_ERROR:
        case ERROR_WINHTTP_SECURE_INVALID_CERT:
        case ERROR_WINHTTP_SECURE_CERT_REVOKED:
        case ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE:
        case ERROR_WINHTTP_CLIENT_AUTH_CERT_NEEDED:
            return true;
        default:
            return false;
    }
}

CertificateTrouble TroubleOf(DWORD flags, DWORD error) {
    if ((flags & WINHTTP_CALLBACK_STATUS_FLAG_CERT_REVOKED) != 0 ||
        error == ERROR_WINHTTP_SECURE_CERT_REVOKED) {
        return CertificateTrouble::revoked;
    }
    if ((flags & WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA) != 0 ||
        error == ERROR_WINHTTP_SECURE_INVALID_CA) {
        return CertificateTrouble::untrusted;
    }
    if ((flags & WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID) != 0 ||
        error == ERROR_WINHTTP_SECURE_CERT_CN_INVALID) {
        return CertificateTrouble::wrongHost;
    }
    if ((flags & WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID) != 0 ||
        error == ERROR_WINHTTP_SECURE_CERT_DATE_INVALID) {
        return CertificateTrouble::expired;
    }
    return CertificateTrouble::unknown;
}

}  // namespace Mirqos::Http
