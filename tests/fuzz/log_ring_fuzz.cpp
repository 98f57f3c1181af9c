// The ring of a live channel, which any process may write to: what is taken from a damaged one, and
// what is put in, against a plain reading of its bytes.
//
// An input is a list of steps, each begun by a byte that tells which.
#include "log/dbg/LogRing.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/fuzz/Input.h"
#include "tests/fuzz/Require.h"
#include "tests/support/ChannelBytes.h"

namespace {

using LOGUTILS::LogRecord;
using LOGUTILS::LogRing;
using Mirqos::Test::Input;
using Mirqos::Test::Require;
using Mirqos::Test::RingBytes;

constexpr std::size_t kMostSteps = 16;
constexpr std::int64_t kMostTaken = 65536;

std::u16string TakeText(Input& input, std::size_t longest) {
    std::u16string text(input.Number() % (longest + 1), u'\u4E2D');
    for (const char c : input.Bytes(input.Byte() % 8)) {
        text.insert(text.begin(), static_cast<char16_t>(c == 0 ? 'n' : c));
    }
    return text;
}

LOGUTILS::WideString Wide(const std::u16string& text) {
    return {text.begin(), text.end()};
}

std::uint64_t TakeLong(Input& input) {
    std::uint64_t value = 0;
    for (int n = 0; n < 4; ++n) {
        value = value << 16 | input.Number();
    }
    return value;
}

/// The ring under test, and the bytes that it has to hold.
class Pair {
public:
    Pair() {
        LOGUTILS::ClearRing(*m_ring);
        std::memset(m_expected.data(), 0, m_expected.size());
        m_bytes.SetLongNumber(RingBytes::kLastReadAt, -1);
        m_bytes.SetLongNumber(RingBytes::kLastWrittenAt, -1);
    }

    void Step(Input& input) {
        switch (input.Byte() % 4) {
            case 0:
                Damage(input);
                break;
            case 1:
                SetNumbers(input);
                break;
            case 2:
                Append(input);
                break;
            default:
                Take();
                break;
        }
        Require(std::memcmp(m_ring.get(), m_expected.data(), m_expected.size()) == 0,
                "no other byte was changed");
    }

private:
    void Damage(Input& input) {
        const std::size_t offset =
            RingBytes::RecordAt(input.Number() % 1024) + input.Number() % RingBytes::kRecordSize;
        std::string bytes = input.Bytes(input.Byte() % 64);
        if (input.Byte() % 2 != 0) {
            bytes.assign(RingBytes::kRecordSize, '\xA5');  // over every terminator
        }
        std::memcpy(m_expected.data() + offset, bytes.data(),
                    std::min(bytes.size(), m_expected.size() - offset));
        TakeOver();
    }

    void SetNumbers(Input& input) {
        const std::int64_t near = m_bytes.LastWritten();
        for (const std::size_t offset : {RingBytes::kLastReadAt, RingBytes::kLastWrittenAt}) {
            const auto value = input.Byte() % 2 == 0
                                   ? TakeLong(input)
                                   : static_cast<std::uint64_t>(near) + input.Number() - 0x8000;
            m_bytes.SetLongNumber(offset, static_cast<std::int64_t>(value));
        }
        TakeOver();
    }

    void Append(Input& input) {
        const std::u16string channel = TakeText(input, 300);
        const std::u16string source = TakeText(input, 300);
        const std::u16string text = TakeText(input, 3000);
        LogRecord record = LOGUTILS::MakeRecord(Wide(channel), Wide(source), Wide(text));
        record.m_dwLevel = input.Byte();
        LOGUTILS::AppendRecord(*m_ring, record);

        const auto number = static_cast<std::uint64_t>(m_bytes.LastWritten()) + 1;
        m_bytes.SetLongNumber(RingBytes::kLastWrittenAt, static_cast<std::int64_t>(number));
        const auto slot = static_cast<std::size_t>(number & 1023);
        std::memset(m_expected.data() + RingBytes::RecordAt(slot), 0, RingBytes::kRecordSize);
        m_bytes.SetText(RingBytes::ChannelAt(slot), RingBytes::kNameUnits, channel);
        m_bytes.SetText(RingBytes::SourceAt(slot), RingBytes::kNameUnits, source);
        m_bytes.SetText(RingBytes::TextAt(slot), RingBytes::kTextUnits, text);
        m_bytes.SetNumber(RingBytes::LevelAt(slot), record.m_dwLevel);
    }

    /// How many numbers follow the last read one up to the last written one, one by one.
    std::int64_t CountNew() const {
        std::int64_t count = 0;
        std::int64_t number = m_bytes.LastWritten();
        if (number == -1) {
            return 0;
        }
        while (number > m_bytes.LastRead() && count < kMostTaken) {
            ++count;
            --number;
        }
        return count;
    }

    void Take() {
        const LOGUTILS::NewRecords found = LOGUTILS::FindNewRecords(*m_ring);
        Require(found.m_nCount == CountNew(), "as many are taken as the numbers say");
        for (std::int64_t i = 0; i < found.m_nCount; ++i) {
            const std::int64_t number = m_bytes.LastWritten() - (found.m_nCount - 1) + i;
            const auto slot = static_cast<std::size_t>(static_cast<std::uint64_t>(number) & 1023);
            Require(&LOGUTILS::RecordAt(*m_ring, found.m_nFirst + i) == &m_ring->m_records[slot],
                    "a record lies in its slot");
        }
        if (found.m_nCount > 0) {
            LookAt(LOGUTILS::RecordAt(*m_ring, found.m_nFirst));
        }
    }

    static void LookAt(LogRecord record) {
        LOGUTILS::EndTexts(record);
        Require(LOGUTILS::TextIn(record.m_szChannel).size() < RingBytes::kNameUnits &&
                    LOGUTILS::TextIn(record.m_szSource).size() < RingBytes::kNameUnits &&
                    LOGUTILS::TextIn(record.m_szText).size() < RingBytes::kTextUnits,
                "every text ends");
        const LOGUTILS::WideString prefix = LOGUTILS::PrefixOf(record);
        Require(prefix.front() == '[' && prefix.back() == ' ', "a prefix is whole");
    }

    void TakeOver() { std::memcpy(m_ring.get(), m_expected.data(), m_expected.size()); }

    std::unique_ptr<LogRing> m_ring = std::make_unique<LogRing>();
    std::vector<unsigned char> m_expected = std::vector<unsigned char>(RingBytes::kSize);
    RingBytes m_bytes = RingBytes(m_expected.data());
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Pair pair;
    Input input(data, size);
    for (std::size_t step = 0; step < kMostSteps && !input.AtEnd(); ++step) {
        pair.Step(input);
    }
    return 0;
}
