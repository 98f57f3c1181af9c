#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Mirqos::Test {

/// Takes an input apart, from its beginning to its end; behind the end stand zeros.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}

    bool AtEnd() const { return m_left == 0; }

    std::uint8_t Byte() {
        if (AtEnd()) {
            return 0;
        }
        --m_left;
        return *m_data++;
    }

    /// Two bytes, the low one first.
    std::size_t Number() {
        const std::size_t low = Byte();
        return low | std::size_t{Byte()} << 8;
    }

    /// At most `size` bytes.
    std::string Bytes(std::size_t size) {
        const std::size_t taken = std::min(size, m_left);
        const std::string bytes(m_data, m_data + taken);
        m_data += taken;
        m_left -= taken;
        return bytes;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_left;
};

}  // namespace Mirqos::Test
