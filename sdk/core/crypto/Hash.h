#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

/// Digests over the system's own cryptography: BCrypt in win32/, OpenSSL in posix/. Every function
/// may be called from any number of threads at once; one hash object belongs to one thread. All of
/// them throw Error where the system refuses the algorithm and std::bad_alloc where memory is
/// short.
namespace Mirqos::Crypto {

using Sha256Digest = std::array<std::uint8_t, 32>;
using Md5Digest = std::array<std::uint8_t, 16>;

/// What the system says when it refuses, a system restricted to approved algorithms to MD5 for one.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Algorithm { md5, sha256 };

/// A digest that grows with its data. Use Sha256 or Md5.
class HashState {
public:
    explicit HashState(Algorithm algorithm);
    ~HashState();
    HashState(const HashState&) = delete;
    HashState& operator=(const HashState&) = delete;

    void Update(const void* data, std::size_t size);
    /// Writes the digest of everything so far; `size` is the algorithm's own. Ends the object's
    /// use.
    void Finish(std::uint8_t* digest, std::size_t size);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

template <Algorithm algorithm, typename Digest>
class Hash {
public:
    /// Appends `size` bytes; `data` may be null when `size` is 0.
    void Update(const void* data, std::size_t size) { m_state.Update(data, size); }

    /// The digest of all bytes appended. Once only; the object is spent afterwards.
    Digest Finish() {
        Digest digest;
        m_state.Finish(digest.data(), digest.size());
        return digest;
    }

private:
    HashState m_state{algorithm};
};

using Sha256 = Hash<Algorithm::sha256, Sha256Digest>;
using Md5 = Hash<Algorithm::md5, Md5Digest>;

Sha256Digest HmacSha256(const void* key, std::size_t keySize, const void* data, std::size_t size);

/// Lower-case hexadecimal digits, two for each byte.
std::string ToHex(const std::uint8_t* data, std::size_t size);
/// Base64 with padding, without line breaks.
std::string ToBase64(const std::uint8_t* data, std::size_t size);

template <std::size_t size>
std::string ToHex(const std::array<std::uint8_t, size>& digest) {
    return ToHex(digest.data(), size);
}

template <std::size_t size>
std::string ToBase64(const std::array<std::uint8_t, size>& digest) {
    return ToBase64(digest.data(), size);
}

}  // namespace Mirqos::Crypto
