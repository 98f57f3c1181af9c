#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/support/RawBytes.h"

namespace Mirqos::Test {

/// A log configuration block as docs/formats.md describes it, read and written byte by byte: it
/// knows the documented numbers and nothing of the library. The bytes belong to the caller.
class LogBlockBytes : public RawBytes {
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

    using RawBytes::RawBytes;

    std::u16string GlobalPath() const { return Text(kGlobalPathAt, kPathUnits); }
    std::int32_t GlobalLevel() const { return static_cast<std::int32_t>(Number(kGlobalLevelAt)); }
    std::u16string Name(std::size_t module) const { return Text(NameAt(module), kNameUnits); }
    std::u16string Path(std::size_t module) const { return Text(PathAt(module), kPathUnits); }
    std::int32_t Level(std::size_t module) const {
        return static_cast<std::int32_t>(Number(LevelAt(module)));
    }
    std::uint32_t Flags(std::size_t module) const { return Number(FlagsAt(module)); }
};

}  // namespace Mirqos::Test
