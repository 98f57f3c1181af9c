#include "tools/mirqos/Sha256.h"

#include <windows.h>
// after windows.h, which it does not include itself
#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

constexpr std::size_t kMostPerCall = std::size_t{1} << 30U;

void Check(NTSTATUS status) {
    if (status < 0) {
        throw std::runtime_error("BCrypt could not compute a SHA-256 digest, status " +
                                 std::to_string(status));
    }
}

BCRYPT_ALG_HANDLE OpenProvider() {
    BCRYPT_ALG_HANDLE provider = nullptr;
    Check(BCryptOpenAlgorithmProvider(&provider, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    return provider;
}

/// Opened once, because that is slow, and kept until the process ends.
BCRYPT_ALG_HANDLE Provider() {
    static const BCRYPT_ALG_HANDLE provider = OpenProvider();
    return provider;
}

}  // namespace

struct Sha256::State {
    State() { Check(BCryptCreateHash(Provider(), &handle, nullptr, 0, nullptr, 0, 0)); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { BCryptDestroyHash(handle); }

    BCRYPT_HASH_HANDLE handle = nullptr;
};

Sha256::Sha256() : m_state(std::make_unique<State>()) {
}

Sha256::~Sha256() = default;

void Sha256::Update(const void* data, std::size_t size) {
    const auto* from = static_cast<const unsigned char*>(data);
    while (size > 0) {
        const std::size_t count = std::min(size, kMostPerCall);
        // declared writable, but only read
        Check(BCryptHashData(m_state->handle, const_cast<unsigned char*>(from),
                             static_cast<ULONG>(count), 0));
        from += count;
        size -= count;
    }
}

std::string Sha256::Finish() {
    std::array<unsigned char, 32> digest{};
    Check(BCryptFinishHash(m_state->handle, digest.data(), static_cast<ULONG>(digest.size()), 0));
    return FormatHex(digest.data(), digest.size());
}

}  // namespace Mirqos::Tool
