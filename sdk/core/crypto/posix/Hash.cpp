#include "sdk/core/crypto/Hash.h"

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include <new>

namespace Mirqos::Crypto {
namespace {

const EVP_MD* Require(EVP_MD* digest, const char* name) {
    if (digest == nullptr) {
        throw Error(std::string("OpenSSL offers no ") + name);
    }
    return digest;
}

// Looked up once: the look-up costs more than hashing a short text. Kept until the process ends.
const EVP_MD* DigestOf(Algorithm algorithm) {
    if (algorithm == Algorithm::md5) {
        static const EVP_MD* const md5 = Require(EVP_MD_fetch(nullptr, "MD5", nullptr), "MD5");
        return md5;
    }
    static const EVP_MD* const sha256 =
        Require(EVP_MD_fetch(nullptr, "SHA2-256", nullptr), "SHA-256");
    return sha256;
}

void Check(int result) {
    if (result != 1) {
        throw Error("OpenSSL could not compute a digest");
    }
}

/// HMAC-SHA256 without a key yet, to be copied: to find and to set it up costs several times what
/// the digest of a short text does. Kept like the digests.
const EVP_MAC_CTX* KeylessHmac() {
    static const EVP_MAC_CTX* const keyless = [] {
        EVP_MAC* const hmac = EVP_MAC_fetch(nullptr, "HMAC", nullptr);
        EVP_MAC_CTX* const context = hmac != nullptr ? EVP_MAC_CTX_new(hmac) : nullptr;
        EVP_MAC_free(hmac);  // the context holds it
        char name[] = "SHA2-256";
        const OSSL_PARAM parameters[] = {
            OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, name, 0),
            OSSL_PARAM_construct_end()};
        if (context == nullptr || EVP_MAC_CTX_set_params(context, parameters) != 1) {
            throw Error("OpenSSL offers no HMAC-SHA256");
        }
        return context;
    }();
    return keyless;
}

}  // namespace

struct HashState::Impl {
    Impl() : context(EVP_MD_CTX_new()) {
        if (context == nullptr) {
            throw std::bad_alloc();
        }
    }
    ~Impl() { EVP_MD_CTX_free(context); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    EVP_MD_CTX* context;
};

HashState::HashState(Algorithm algorithm) : m_impl(std::make_unique<Impl>()) {
    Check(EVP_DigestInit_ex(m_impl->context, DigestOf(algorithm), nullptr));
}

HashState::~HashState() = default;

void HashState::Update(const void* data, std::size_t size) {
    Check(EVP_DigestUpdate(m_impl->context, data, size));
}

void HashState::Finish(std::uint8_t* digest, std::size_t size) {
    if (size != static_cast<std::size_t>(EVP_MD_CTX_size(m_impl->context))) {
        throw Error("wrong room for a digest");
    }
    Check(EVP_DigestFinal_ex(m_impl->context, digest, nullptr));
}

Sha256Digest HmacSha256(const void* key, std::size_t keySize, const void* data, std::size_t size) {
    const std::unique_ptr<EVP_MAC_CTX, decltype(&EVP_MAC_CTX_free)> context(
        EVP_MAC_CTX_dup(KeylessHmac()), &EVP_MAC_CTX_free);
    if (context == nullptr) {
        throw std::bad_alloc();
    }
    // A null key would mean "the key of the last call".
    static constexpr unsigned char none = 0;
    Check(EVP_MAC_init(context.get(), keySize == 0 ? &none : static_cast<const unsigned char*>(key),
                       keySize, nullptr));
    Check(EVP_MAC_update(context.get(), static_cast<const unsigned char*>(data), size));
    Sha256Digest digest;
    std::size_t written = 0;
    Check(EVP_MAC_final(context.get(), digest.data(), &written, digest.size()));
    if (written != digest.size()) {
        throw Error("OpenSSL could not compute an HMAC");
    }
    return digest;
}

}  // namespace Mirqos::Crypto
