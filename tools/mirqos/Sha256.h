#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// The SHA-256 digest of bytes that come in pieces. Throws std::runtime_error where the system
/// offers none. Not safe for use by two threads at once.
class Sha256 {
public:
    Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;
    ~Sha256();

    void Update(const void* data, std::size_t size);
    /// The digest in lower-case hexadecimal; nothing more may be added.
    std::string Finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Of one text.
std::string Sha256Of(std::string_view text);

}  // namespace Mirqos::Tool
