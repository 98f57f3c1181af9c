#include "tests/wire/SignatureCheck.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "sdk/core/crypto/Hash.h"
#include "tests/support/UsedSdk.h"

namespace Mirqos::Test {
namespace {

std::string HmacOf(const std::string& key, const std::string& text) {
    const Crypto::Sha256Digest digest =
        Crypto::HmacSha256(key.data(), key.size(), text.data(), text.size());
    return std::string(digest.begin(), digest.end());
}

std::string HexOf(const std::string& bytes) {
    static const char* const digits = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
        hex += digits[static_cast<unsigned char>(c) >> 4];
        hex += digits[static_cast<unsigned char>(c) & 15];
    }
    return hex;
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

// The text after `name` and before the next comma.
std::string Field(const std::string& authorization, const std::string& name) {
    const std::size_t at = authorization.find(name);
    if (at == std::string::npos) {
        return {};
    }
    const std::size_t start = at + name.size();
    return authorization.substr(start, authorization.find(',', start) - start);
}

std::string CanonicalQuery(const std::string& query) {
    std::vector<std::string> parts = Split(query, '&');
    for (std::string& part : parts) {
        if (part.find('=') == std::string::npos) {
            part += '=';
        }
    }
    std::sort(parts.begin(), parts.end());
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : "&") + part;
    }
    return text;
}

/// Characters of a path that an installed SDK leaves as they are.
constexpr std::pair<const char*, const char*> kLeft[] = {{"%24", "$"}, {"%26", "&"}, {"%2C", ","},
                                                         {"%3A", ":"}, {"%3D", "="}, {"%40", "@"}};

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
}

std::string SignedHeaderList(const RecordedRequest& request) {
    return Field(request.Value("authorization"), "SignedHeaders=");
}

}  // namespace

std::string Md5Of(const std::string& bytes) {
    Crypto::Md5 hash;
    hash.Update(bytes.data(), bytes.size());
    return Crypto::ToBase64(hash.Finish());
}

std::string Sha256Of(const std::string& bytes) {
    Crypto::Sha256 hash;
    hash.Update(bytes.data(), bytes.size());
    const Crypto::Sha256Digest digest = hash.Finish();
    return HexOf(std::string(digest.begin(), digest.end()));
}

std::string Md5OfUploads(const std::string& bytes) {
    return kSdk1_11 ? Md5Of(bytes) : "";
}

bool IsOfTheSdkItself(const std::string& header) {
    if (kSdk1_11 && header == "content-md5") {
        return true;
    }
    return !kBundledSdk && (header.rfind("amz-sdk-", 0) == 0 || header == "x-amz-api-version" ||
                            header == "upgrade" || header == "http2-settings");
}

std::string CanonicalPath(std::string path) {
    if (!kBundledSdk) {
        for (const auto& [encoded, left] : kLeft) {
            ReplaceAll(path, left, encoded);
        }
    }
    return path;
}

std::string PathOnWire(std::string encoded) {
    if (!kBundledSdk) {
        for (const auto& [escape, left] : kLeft) {
            ReplaceAll(encoded, escape, left);
        }
    }
    return encoded;
}

std::string SignedHeadersOf(const RecordedRequest& request) {
    std::string list;
    for (const std::string& name : Split(SignedHeaderList(request), ';')) {
        // an installed SDK names a type also where there is no body
        const bool typeOfNothing = !kBundledSdk && name == "content-type" && request.body.empty();
        if (!IsOfTheSdkItself(name) && !typeOfNothing) {
            list += (list.empty() ? "" : ";") + name;
        }
    }
    return list;
}

std::string SignatureProblem(const RecordedRequest& request, const std::string& keyId,
                             const std::string& secret, const std::string& region) {
    const std::string authorization = request.Value("authorization");
    if (authorization.rfind("AWS4-HMAC-SHA256 ", 0) != 0) {
        return "no signature: [" + authorization + "]";
    }
    const std::string time = request.Value("x-amz-date");
    const std::string day = time.substr(0, 8);
    const std::string scope = day + "/" + region + "/s3/aws4_request";
    if (Field(authorization, "Credential=") != keyId + "/" + scope) {
        return "wrong credential: " + authorization;
    }
    const std::string payload = request.Value("x-amz-content-sha256");
    if (payload != Sha256Of(request.body)) {
        return "the digest is not the body's: " + payload;
    }
    std::string canonical = request.method + "\n" + CanonicalPath(request.Path()) + "\n" +
                            CanonicalQuery(request.Query()) + "\n";
    const std::vector<std::string> names = Split(SignedHeaderList(request), ';');
    for (const std::string& name : names) {
        if (request.Header(name) == nullptr) {
            return "signed and not sent: " + name;
        }
        canonical += name + ":" + request.Value(name) + "\n";
    }
    canonical += "\n" + SignedHeaderList(request) + "\n" + payload;
    const std::string toSign =
        "AWS4-HMAC-SHA256\n" + time + "\n" + scope + "\n" + Sha256Of(canonical);
    std::string key = HmacOf("AWS4" + secret, day);
    for (const char* const part : {region.c_str(), "s3", "aws4_request"}) {
        key = HmacOf(key, part);
    }
    const std::string expected = HexOf(HmacOf(key, toSign));
    if (Field(authorization, "Signature=") != expected) {
        return "wrong signature for\n" + canonical;
    }
    return {};
}

}  // namespace Mirqos::Test
