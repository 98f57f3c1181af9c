#include "sdk/core/crypto/Hash.h"

#include <windows.h>
// after windows.h, which it does not include itself
#include <bcrypt.h>

#include <algorithm>
#include <new>

namespace Mirqos::Crypto {
namespace {

void Check(NTSTATUS status) {
    // STATUS_NO_MEMORY; its header cannot be included beside windows.h
    constexpr NTSTATUS noMemory = static_cast<NTSTATUS>(0xC0000017);
    if (status == noMemory) {
        throw std::bad_alloc();
    }
    if (status < 0) {
        throw Error("BCrypt could not compute a digest, status " + std::to_string(status));
    }
}

BCRYPT_ALG_HANDLE OpenProvider(const wchar_t* name, ULONG flags) {
    BCRYPT_ALG_HANDLE provider = nullptr;
    Check(BCryptOpenAlgorithmProvider(&provider, name, nullptr, flags));
    return provider;
}

// Opening a provider is slow, so each is opened once and kept until the process ends. BCrypt takes
// concurrent calls on one provider.
BCRYPT_ALG_HANDLE ProviderOf(Algorithm algorithm) {
    if (algorithm == Algorithm::md5) {
        static const BCRYPT_ALG_HANDLE md5 = OpenProvider(BCRYPT_MD5_ALGORITHM, 0);
        return md5;
    }
    static const BCRYPT_ALG_HANDLE sha256 = OpenProvider(BCRYPT_SHA256_ALGORITHM, 0);
    return sha256;
}

BCRYPT_ALG_HANDLE HmacProvider() {
    static const BCRYPT_ALG_HANDLE hmac =
        OpenProvider(BCRYPT_SHA256_ALGORITHM, BCRYPT_ALG_HANDLE_HMAC_FLAG);
    return hmac;
}

// BCrypt declares its inputs writable but only reads them.
PUCHAR Input(const void* data) {
    return static_cast<PUCHAR>(const_cast<void*>(data));
}

class HashHandle {
public:
    HashHandle(BCRYPT_ALG_HANDLE provider, const void* secret, std::size_t secretSize) {
        if (secretSize > kMaxPiece) {
            throw Error("HMAC key too long");
        }
        Check(BCryptCreateHash(provider, &m_handle, nullptr, 0, Input(secret),
                               static_cast<ULONG>(secretSize), 0));
    }
    ~HashHandle() { BCryptDestroyHash(m_handle); }
    HashHandle(const HashHandle&) = delete;
    HashHandle& operator=(const HashHandle&) = delete;

    void Update(const void* data, std::size_t size) {
        PUCHAR from = Input(data);
        while (size > 0) {
            const std::size_t piece = std::min(size, kMaxPiece);
            Check(BCryptHashData(m_handle, from, static_cast<ULONG>(piece), 0));
            from += piece;
            size -= piece;
        }
    }

    void Finish(std::uint8_t* digest, std::size_t size) {
        Check(BCryptFinishHash(m_handle, digest, static_cast<ULONG>(size), 0));
    }

private:
    /// BCrypt counts in 32 bits.
    static constexpr std::size_t kMaxPiece = std::size_t{1} << 30;

    BCRYPT_HASH_HANDLE m_handle = nullptr;
};

}  // namespace

struct HashState::Impl {
    explicit Impl(Algorithm algorithm) : hash(ProviderOf(algorithm), nullptr, 0) {}
    HashHandle hash;
};

HashState::HashState(Algorithm algorithm) : m_impl(std::make_unique<Impl>(algorithm)) {
}

HashState::~HashState() = default;

void HashState::Update(const void* data, std::size_t size) {
    m_impl->hash.Update(data, size);
}

void HashState::Finish(std::uint8_t* digest, std::size_t size) {
    m_impl->hash.Finish(digest, size);
}

Sha256Digest HmacSha256(const void* key, std::size_t keySize, const void* data, std::size_t size) {
    HashHandle hash(HmacProvider(), key, keySize);
    hash.Update(data, size);
    Sha256Digest digest;
    hash.Finish(digest.data(), digest.size());
    return digest;
}

}  // namespace Mirqos::Crypto
