#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Aws::Auth {

/// What requests are signed with. Empty: requests go unsigned.
class AWSCredentials {
public:
    AWSCredentials() = default;
    AWSCredentials(Aws::String accessKeyId, Aws::String secretKey, Aws::String sessionToken = {})
        : m_accessKeyId(std::move(accessKeyId)),
          m_secretKey(std::move(secretKey)),
          m_sessionToken(std::move(sessionToken)) {}

    const Aws::String& GetAWSAccessKeyId() const { return m_accessKeyId; }
    const Aws::String& GetAWSSecretKey() const { return m_secretKey; }
    /// Only temporary credentials have one.
    const Aws::String& GetSessionToken() const { return m_sessionToken; }

    void SetAWSAccessKeyId(const Aws::String& accessKeyId) { m_accessKeyId = accessKeyId; }
    void SetAWSSecretKey(const Aws::String& secretKey) { m_secretKey = secretKey; }
    void SetSessionToken(const Aws::String& sessionToken) { m_sessionToken = sessionToken; }

private:
    Aws::String m_accessKeyId;
    Aws::String m_secretKey;
    Aws::String m_sessionToken;
};

}  // namespace Aws::Auth
