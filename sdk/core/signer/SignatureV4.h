#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "sdk/core/crypto/Hash.h"
#include "sdk/core/http/Transport.h"
#include "sdk/core/signer/UtcTime.h"

namespace Mirqos::Signer {

inline constexpr char kUnsignedPayload[] = "UNSIGNED-PAYLOAD";

/// What a signature covers.
struct Signable {
    std::string method;
    std::string path;  ///< exactly as it goes on the wire: encoded once, never normalised
    std::vector<std::pair<std::string, std::string>> query;  ///< plain text, in any order
    Http::HeaderList headers;  ///< the headers to sign, in any order; Host has to be among them
    std::string payloadHash;   ///< hexadecimal SHA-256 of the body, or kUnsignedPayload
};

struct Scope {
    std::string region;
    std::string service;
    UtcTime time;
};

/// Those of `headers` that a request of a client signs: Host, x-amz-* and content-*. The others are
/// left to proxies, which rewrite some.
Http::HeaderList HeadersToSign(const Http::HeaderList& headers);

std::string CanonicalRequest(const Signable& request);
std::string StringToSign(const std::string& canonicalRequest, const Scope& scope);

/// Signs with one pair of keys. Thread-safe.
class SignatureV4 {
public:
    SignatureV4(std::string accessKeyId, std::string secretKey);

    /// The value of the Authorization header.
    std::string Authorization(const Signable& request, const Scope& scope) const;

private:
    Crypto::Sha256Digest SigningKey(const std::string& day, const Scope& scope,
                                    const std::string& credentialScope) const;

    const std::string m_accessKeyId;
    const std::string m_secretKey;
    /// Four keyed hashes make the key of a day: the last one is kept.
    mutable std::mutex m_mutex;
    mutable std::string m_cachedScope;
    mutable Crypto::Sha256Digest m_cachedKey{};
};

}  // namespace Mirqos::Signer
