#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/support/RawBytes.h"

namespace Mirqos::Test {

/// The ring of a live channel as docs/formats.md describes it: it knows the documented numbers and
/// nothing of the library.
class RingBytes : public RawBytes {
public:
    static constexpr std::size_t kSize = 2654720;
    static constexpr std::size_t kRecordSize = 2592;
    static constexpr std::size_t kLastReadAt = 0;
    static constexpr std::size_t kLastWrittenAt = 8;
    static constexpr std::size_t kReservedAt = 16;
    static constexpr std::size_t kReservedSize = 496;
    static constexpr std::size_t kNameUnits = 128;
    static constexpr std::size_t kTextUnits = 1024;

    static constexpr std::size_t RecordAt(std::size_t slot) { return 512 + slot * kRecordSize; }
    static constexpr std::size_t ChannelAt(std::size_t slot) { return RecordAt(slot); }
    static constexpr std::size_t SourceAt(std::size_t slot) { return RecordAt(slot) + 256; }
    static constexpr std::size_t TimeAt(std::size_t slot) { return RecordAt(slot) + 512; }
    static constexpr std::size_t ErrorCodeAt(std::size_t slot) { return RecordAt(slot) + 528; }
    static constexpr std::size_t LevelAt(std::size_t slot) { return RecordAt(slot) + 532; }
    static constexpr std::size_t ProcessAt(std::size_t slot) { return RecordAt(slot) + 536; }
    static constexpr std::size_t ThreadAt(std::size_t slot) { return RecordAt(slot) + 540; }
    static constexpr std::size_t TextAt(std::size_t slot) { return RecordAt(slot) + 544; }

    using RawBytes::RawBytes;

    std::int64_t LastRead() const { return LongNumber(kLastReadAt); }
    std::int64_t LastWritten() const { return LongNumber(kLastWrittenAt); }
    std::u16string Channel(std::size_t slot) const { return Text(ChannelAt(slot), kNameUnits); }
    std::u16string Source(std::size_t slot) const { return Text(SourceAt(slot), kNameUnits); }
    std::u16string Line(std::size_t slot) const { return Text(TextAt(slot), kTextUnits); }
};

/// A viewer's breakpoint table, likewise.
class BreakpointBytes : public RawBytes {
public:
    static constexpr std::size_t kSize = 661204;
    static constexpr std::size_t kBreakpoints = 100;
    static constexpr std::size_t kHits = 10000;
    static constexpr std::size_t kHitSize = 40;
    static constexpr std::size_t kCountAt = 0;
    static constexpr std::size_t kChannelUnits = 260;
    static constexpr std::size_t kPatternUnits = 1024;

    static constexpr std::size_t IdAt(std::size_t n) { return 4 + n * 2612; }
    static constexpr std::size_t ProcessAt(std::size_t n) { return IdAt(n) + 32; }
    static constexpr std::size_t ThreadAt(std::size_t n) { return IdAt(n) + 36; }
    static constexpr std::size_t EnabledAt(std::size_t n) { return IdAt(n) + 40; }
    static constexpr std::size_t ChannelAt(std::size_t n) { return IdAt(n) + 44; }
    static constexpr std::size_t PatternAt(std::size_t n) { return IdAt(n) + 564; }

    static constexpr std::size_t HitAt(std::size_t n) { return 261204 + n * kHitSize; }
    static constexpr std::size_t HitIdAt(std::size_t n) { return HitAt(n) + 16; }
    static constexpr std::size_t HitProcessAt(std::size_t n) { return HitAt(n) + 32; }
    static constexpr std::size_t HitThreadAt(std::size_t n) { return HitAt(n) + 36; }

    using RawBytes::RawBytes;

    /// An enabled breakpoint for any process and thread, with `id` in the first bytes of its id.
    void Set(std::size_t n, std::uint32_t id, const std::u16string& channel,
             const std::u16string& pattern) {
        SetNumber(IdAt(n), id);
        SetNumber(EnabledAt(n), 1);
        SetText(ChannelAt(n), kChannelUnits, channel);
        SetText(PatternAt(n), kPatternUnits, pattern);
        SetNumber(kCountAt, Number(kCountAt) + 1);
    }
    bool IsFree(std::size_t hit) const { return IsZero(HitAt(hit), 16); }

    /// The id of a hit as the name of its event holds it.
    std::string HitName(std::size_t hit) const {
        constexpr char digits[] = "0123456789ABCDEF";
        // the first three numbers are little-endian, the rest are bytes
        constexpr int order[] = {3,  2, 1, 0,  -1, 5,  4,  -1, 7,  6,
                                 -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
        std::string name;
        for (const int place : order) {
            if (place < 0) {
                name += '-';
                continue;
            }
            const unsigned byte = m_bytes[HitIdAt(hit) + static_cast<std::size_t>(place)];
            name += digits[byte >> 4];
            name += digits[byte & 15];
        }
        return name;
    }
};

}  // namespace Mirqos::Test
