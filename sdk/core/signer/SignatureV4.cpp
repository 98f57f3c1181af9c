#include "sdk/core/signer/SignatureV4.h"

#include <algorithm>
#include <map>

#include "sdk/core/http/Ascii.h"
#include "sdk/core/util/UrlEncode.h"

namespace Mirqos::Signer {
namespace {

constexpr char kAlgorithm[] = "AWS4-HMAC-SHA256";
constexpr char kTerminator[] = "aws4_request";
constexpr std::size_t kDayLength = 8;  // YYYYMMDD

std::string Sha256Hex(std::string_view text) {
    Crypto::Sha256 hash;
    hash.Update(text.data(), text.size());
    return Crypto::ToHex(hash.Finish());
}

Crypto::Sha256Digest Hmac(const void* key, std::size_t keySize, std::string_view text) {
    return Crypto::HmacSha256(key, keySize, text.data(), text.size());
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), Http::LowerAscii);
    return text;
}

/// Without blanks around it, and with runs of blanks inside made one.
std::string Collapse(std::string_view value) {
    std::string collapsed;
    collapsed.reserve(value.size());
    for (const char c : value) {
        const bool blank = c == ' ' || c == '\t';
        if (!blank) {
            collapsed += c;
        } else if (!collapsed.empty() && collapsed.back() != ' ') {
            collapsed += ' ';
        }
    }
    if (!collapsed.empty() && collapsed.back() == ' ') {
        collapsed.pop_back();
    }
    return collapsed;
}

struct CanonicalHeaders {
    std::string lines;
    std::string names;
};

/// Lower-case names in order; several values of one name joined in the order they were given.
CanonicalHeaders Canonical(const Http::HeaderList& headers) {
    std::map<std::string, std::string> inOrder;
    for (const auto& [name, value] : headers) {
        const auto [place, isNew] = inOrder.try_emplace(Lower(name), Collapse(value));
        if (!isNew) {
            place->second.append(",").append(Collapse(value));
        }
    }
    CanonicalHeaders canonical;
    for (const auto& [name, value] : inOrder) {
        canonical.lines.append(name).append(":").append(value).append("\n");
        canonical.names.append(canonical.names.empty() ? "" : ";").append(name);
    }
    return canonical;
}

std::string CanonicalText(const Signable& request, const CanonicalHeaders& headers) {
    std::vector<std::pair<std::string, std::string>> query;
    for (const auto& [name, value] : request.query) {
        query.emplace_back(EncodeQuery(name), EncodeQuery(value));
    }
    std::sort(query.begin(), query.end());

    std::string text = request.method + '\n' + request.path + '\n';
    for (std::size_t i = 0; i < query.size(); ++i) {
        text.append(i == 0 ? "" : "&").append(query[i].first).append("=").append(query[i].second);
    }
    text.append("\n").append(headers.lines).append("\n").append(headers.names).append("\n");
    return text + request.payloadHash;
}

std::string CredentialScope(const std::string& day, const Scope& scope) {
    return day + '/' + scope.region + '/' + scope.service + '/' + kTerminator;
}

std::string TextToSign(const std::string& canonicalRequest, const std::string& time,
                       const std::string& credentialScope) {
    return std::string(kAlgorithm) + '\n' + time + '\n' + credentialScope + '\n' +
           Sha256Hex(canonicalRequest);
}

}  // namespace

Http::HeaderList HeadersToSign(const Http::HeaderList& headers) {
    Http::HeaderList chosen;
    for (const auto& header : headers) {
        const std::string name = Lower(header.first);
        if (name == "host" || name.rfind("x-amz-", 0) == 0 || name.rfind("content-", 0) == 0) {
            chosen.push_back(header);
        }
    }
    return chosen;
}

std::string CanonicalRequest(const Signable& request) {
    return CanonicalText(request, Canonical(request.headers));
}

std::string StringToSign(const std::string& canonicalRequest, const Scope& scope) {
    const std::string time = FormatAmzDate(scope.time);
    return TextToSign(canonicalRequest, time, CredentialScope(time.substr(0, kDayLength), scope));
}

SignatureV4::SignatureV4(std::string accessKeyId, std::string secretKey)
    : m_accessKeyId(std::move(accessKeyId)), m_secretKey(std::move(secretKey)) {
}

std::string SignatureV4::Authorization(const Signable& request, const Scope& scope) const {
    const std::string time = FormatAmzDate(scope.time);
    const std::string day = time.substr(0, kDayLength);
    const std::string credentialScope = CredentialScope(day, scope);
    const Crypto::Sha256Digest key = SigningKey(day, scope, credentialScope);
    const CanonicalHeaders headers = Canonical(request.headers);
    const std::string toSign = TextToSign(CanonicalText(request, headers), time, credentialScope);
    return std::string(kAlgorithm) + " Credential=" + m_accessKeyId + '/' + credentialScope +
           ", SignedHeaders=" + headers.names +
           ", Signature=" + Crypto::ToHex(Hmac(key.data(), key.size(), toSign));
}

Crypto::Sha256Digest SignatureV4::SigningKey(const std::string& day, const Scope& scope,
                                             const std::string& credentialScope) const {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_cachedScope == credentialScope) {
            return m_cachedKey;
        }
    }
    const std::string secret = "AWS4" + m_secretKey;
    Crypto::Sha256Digest key = Hmac(secret.data(), secret.size(), day);
    for (const std::string_view part :
         {std::string_view(scope.region), std::string_view(scope.service),
          std::string_view(kTerminator)}) {
        key = Hmac(key.data(), key.size(), part);
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_cachedScope = credentialScope;
    m_cachedKey = key;
    return key;
}

}  // namespace Mirqos::Signer
