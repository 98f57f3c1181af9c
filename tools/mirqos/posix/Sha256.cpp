#include "tools/mirqos/Sha256.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

void Check(int result) {
    if (result != 1) {
        throw std::runtime_error("OpenSSL could not compute a SHA-256 digest");
    }
}

}  // namespace

struct Sha256::State {
    std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

Sha256::Sha256() : m_state(std::make_unique<State>()) {
    Check(EVP_DigestInit_ex(m_state->context.get(), EVP_sha256(), nullptr));
}

Sha256::~Sha256() = default;

void Sha256::Update(const void* data, std::size_t size) {
    Check(EVP_DigestUpdate(m_state->context.get(), data, size));
}

std::string Sha256::Finish() {
    std::array<unsigned char, 32> digest{};
    Check(EVP_DigestFinal_ex(m_state->context.get(), digest.data(), nullptr));
    return FormatHex(digest.data(), digest.size());
}

}  // namespace Mirqos::Tool
