#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Mirqos::Test {

/// A log configuration block as docs/formats.md describes it, read and written byte by byte: it
/// knows the documented numbers and nothing of the library. The bytes belong to the caller.
class LogBlockBytes {
public:
    static constexpr std::size_t kSize = 1188876;
    static constexpr std::size_t kModules = 1024;
    static constexpr std::uint32_t kMagic = 59110;
    static constexpr std::size_t kNameUnits = 64;
    static constexpr std::size_t kPathUnits = 512;

    static constexpr std::size_t kMagicAt = 0;
    static constexpr std::size_t kGlobalPathAt = 4;
    static constexpr std::size_t kGlobalLevelAt = 1028;
    static constexpr std::size_t kEndMagicAt = 1188872;

    static constexpr std::size_t NameAt(std::size_t module) { return 1032 + module * 1160; }
    static constexpr std::size_t PathAt(std::size_t module) { return NameAt(module) + 128; }
    static constexpr std::size_t LevelAt(std::size_t module) { return NameAt(module) + 1152; }
    static constexpr std::size_t FlagsAt(std::size_t module) { return NameAt(module) + 1156; }

    explicit LogBlockBytes(unsigned char* bytes) : m_bytes(bytes) {}

    std::u16string GlobalPath() const { return Text(kGlobalPathAt, kPathUnits); }
    std::int32_t GlobalLevel() const { return static_cast<std::int32_t>(Number(kGlobalLevelAt)); }
    std::u16string Name(std::size_t module) const { return Text(NameAt(module), kNameUnits); }
    std::u16string Path(std::size_t module) const { return Text(PathAt(module), kPathUnits); }
    std::int32_t Level(std::size_t module) const {
        return static_cast<std::int32_t>(Number(LevelAt(module)));
    }
    std::uint32_t Flags(std::size_t module) const { return Number(FlagsAt(module)); }

    std::uint32_t Number(std::size_t offset) const {
        return m_bytes[offset] | std::uint32_t{m_bytes[offset + 1]} << 8 |
               std::uint32_t{m_bytes[offset + 2]} << 16 | std::uint32_t{m_bytes[offset + 3]} << 24;
    }
    void SetNumber(std::size_t offset, std::uint32_t value) {
        for (std::size_t n = 0; n < 4; ++n) {
            m_bytes[offset + n] = static_cast<unsigned char>(value >> 8 * n);
        }
    }

    /// Up to the first zero unit, or the whole room.
    std::u16string Text(std::size_t offset, std::size_t units) const {
        std::u16string text;
        for (std::size_t n = 0; n < units; ++n) {
            const auto unit =
                static_cast<char16_t>(m_bytes[offset + 2 * n] | m_bytes[offset + 2 * n + 1] << 8);
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

private:
    unsigned char* m_bytes;
};

}  // namespace Mirqos::Test
