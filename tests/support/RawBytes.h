#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Mirqos::Test {

/// Numbers and texts of a shared block, read and written byte by byte. The bytes belong to the
/// caller.
class RawBytes {
public:
    explicit RawBytes(unsigned char* bytes) : m_bytes(bytes) {}

    std::uint16_t Short(std::size_t offset) const {
        return static_cast<std::uint16_t>(m_bytes[offset] | m_bytes[offset + 1] << 8);
    }
    std::uint32_t Number(std::size_t offset) const {
        return Short(offset) | std::uint32_t{Short(offset + 2)} << 16;
    }
    std::int64_t LongNumber(std::size_t offset) const {
        return static_cast<std::int64_t>(Number(offset) | std::uint64_t{Number(offset + 4)} << 32);
    }
    void SetNumber(std::size_t offset, std::uint32_t value) {
        for (std::size_t n = 0; n < 4; ++n) {
            m_bytes[offset + n] = static_cast<unsigned char>(value >> 8 * n);
        }
    }
    void SetLongNumber(std::size_t offset, std::int64_t value) {
        SetNumber(offset, static_cast<std::uint32_t>(value & 0xFFFFFFFF));
        SetNumber(offset + 4, static_cast<std::uint32_t>(static_cast<std::uint64_t>(value) >> 32));
    }

    /// Up to the first zero unit, or the whole room.
    std::u16string Text(std::size_t offset, std::size_t units) const {
        std::u16string text;
        for (std::size_t n = 0; n < units; ++n) {
            const auto unit = static_cast<char16_t>(Short(offset + 2 * n));
            if (unit == 0) {
                break;
            }
            text += unit;
        }
        return text;
    }
    /// Cut to what fits before a zero unit; the rest of the room becomes zero.
    void SetText(std::size_t offset, std::size_t units, const std::u16string& text) {
        for (std::size_t n = 0; n < units; ++n) {
            const unsigned unit = n < text.size() && n + 1 < units ? text[n] : 0u;
            m_bytes[offset + 2 * n] = static_cast<unsigned char>(unit);
            m_bytes[offset + 2 * n + 1] = static_cast<unsigned char>(unit >> 8);
        }
    }

    bool IsZero(std::size_t offset, std::size_t size) const {
        for (std::size_t n = 0; n < size; ++n) {
            if (m_bytes[offset + n] != 0) {
                return false;
            }
        }
        return true;
    }

protected:
    unsigned char* m_bytes;
};

}  // namespace Mirqos::Test
