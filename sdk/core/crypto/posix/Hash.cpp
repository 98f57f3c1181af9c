#include "sdk/core/crypto/Hash.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <climits>
#include <new>
#include <stdexcept>

namespace Mirqos::Crypto {
namespace {

const EVP_MD* Require(EVP_MD* digest, const char* name) {
    if (digest == nullptr) {
        throw std::runtime_error(std::string("OpenSSL offers no ") + name);
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
        throw std::runtime_error("OpenSSL could not compute a digest");
    }
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
        throw std::runtime_error("wrong room for a digest");
    }
    Check(EVP_DigestFinal_ex(m_impl->context, digest, nullptr));
}

Sha256Digest HmacSha256(const void* key, std::size_t keySize, const void* data, std::size_t size) {
    if (keySize > INT_MAX) {
        throw std::runtime_error("HMAC key too long");
    }
    // A null key would mean "the key of the last call".
    static constexpr char none = 0;
    Sha256Digest digest;
    unsigned written = 0;
    if (HMAC(DigestOf(Algorithm::sha256), keySize == 0 ? &none : key, static_cast<int>(keySize),
             static_cast<const unsigned char*>(data), size, digest.data(), &written) == nullptr ||
        written != digest.size()) {
        throw std::runtime_error("OpenSSL could not compute an HMAC");
    }
    return digest;
}

}  // namespace Mirqos::Crypto
