#include <gtest/gtest.h>

#include "sdk/core/http/win32/SecureFailure.h"

namespace Mirqos::Http {
namespace {

TEST(SecureFailure, FlagsSayWhatIsWrongWithTheCertificate) {
    constexpr DWORD refused = ERROR_WINHTTP_SECURE_FAILURE;
    EXPECT_EQ(TroubleOf(WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA, refused),
              CertificateTrouble::untrusted);
    EXPECT_EQ(TroubleOf(WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID, refused),
              CertificateTrouble::wrongHost);
    EXPECT_EQ(TroubleOf(WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID, refused),
              CertificateTrouble::expired);
    EXPECT_EQ(TroubleOf(WINHTTP_CALLBACK_STATUS_FLAG_CERT_REVOKED, refused),
              CertificateTrouble::revoked);
    EXPECT_EQ(TroubleOf(WINHTTP_CALLBACK_STATUS_FLAG_SECURITY_CHANNEL_ERROR, refused),
              CertificateTrouble::unknown);
}

TEST(SecureFailure, TheGravestReasonIsNamed) {
    EXPECT_EQ(TroubleOf(WINHTTP_CALLBACK_STATUS_FLAG_INVALID_CA |
                            WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID |
                            WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID,
                        ERROR_WINHTTP_SECURE_FAILURE),
              CertificateTrouble::untrusted);
}

TEST(SecureFailure, ErrorsSpeakWhereFlagsAreMissing) {
    EXPECT_EQ(TroubleOf(0, ERROR_WINHTTP_SECURE_INVALID_CA), CertificateTrouble::untrusted);
    EXPECT_EQ(TroubleOf(0, ERROR_WINHTTP_SECURE_CERT_CN_INVALID), CertificateTrouble::wrongHost);
    EXPECT_EQ(TroubleOf(0, ERROR_WINHTTP_SECURE_CERT_DATE_INVALID), CertificateTrouble::expired);
    EXPECT_EQ(TroubleOf(0, ERROR_WINHTTP_SECURE_CERT_REVOKED), CertificateTrouble::revoked);
    EXPECT_EQ(TroubleOf(0, ERROR_WINHTTP_SECURE_CHANNEL_ERROR), CertificateTrouble::unknown);
}

TEST(SecureFailure, OtherErrorsAreNone) {
    EXPECT_TRUE(IsSecureFailure(ERROR_WINHTTP_SECURE_FAILURE));
    EXPECT_TRUE(IsSecureFailure(ERROR_WINHTTP_SECURE_CHANNEL_ERROR));
    EXPECT_FALSE(IsSecureFailure(ERROR_WINHTTP_CANNOT_CONNECT));
    EXPECT_FALSE(IsSecureFailure(ERROR_WINHTTP_TIMEOUT));
}

}  // namespace
}  // namespace Mirqos::Http
