// A viewer's breakpoint table, which any process may write to: what a line matches in a damaged
// one, and which hit record is free, against a plain reading of its bytes.
//
// An input is a list of steps, each begun by a byte that tells which.
#include "log/dbg/LogBreakpoints.h"

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

using LOGUTILS::LogBreakpointTable;
using Mirqos::Test::BreakpointBytes;
using Mirqos::Test::Input;
using Mirqos::Test::Require;

constexpr std::size_t kMostSteps = 32;

/// A text of two characters in two letter cases: patterns then occur now and again.
std::u16string TakeText(Input& input) {
    std::u16string text;
    for (const char c : input.Bytes(input.Byte() % 12)) {
        text += u"aAbB"[static_cast<unsigned char>(c) % 4];
    }
    return text;
}

std::u16string Upper(std::u16string text) {
    for (char16_t& c : text) {
        c = c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
    }
    return text;
}

class Table {
public:
    void Step(Input& input) {
        switch (input.Byte() % 4) {
            case 0:
                Damage(input);
                break;
            case 1:
                SetBreakpoint(input);
                break;
            case 2:
                TakeHits(input);
                break;
            default:
                Match(input);
                break;
        }
        FindFree();
    }

private:
    LogBreakpointTable& Get() { return *reinterpret_cast<LogBreakpointTable*>(m_memory.data()); }

    void Damage(Input& input) {
        const std::size_t offset = (input.Number() << 8 | input.Byte()) % m_memory.size();
        const std::size_t size = input.Number();
        std::string bytes = input.Bytes(size % 16);
        if (size >= 0x8000) {
            bytes.assign(size % 0x2000, 'a');
        }
        std::memcpy(m_memory.data() + offset, bytes.data(),
                    std::min(bytes.size(), m_memory.size() - offset));
    }

    void SetBreakpoint(Input& input) {
        const std::size_t n = input.Byte() % BreakpointBytes::kBreakpoints;
        const std::u16string channel = TakeText(input);
        const std::u16string pattern = TakeText(input);
        m_bytes.Set(n, input.Byte() % 4, channel, pattern);
        m_bytes.SetNumber(BreakpointBytes::ProcessAt(n), input.Byte() % 4);
        m_bytes.SetNumber(BreakpointBytes::ThreadAt(n), input.Byte() % 4);
        m_bytes.SetNumber(BreakpointBytes::EnabledAt(n), input.Byte() % 4);
        m_bytes.SetNumber(BreakpointBytes::kCountAt, input.Byte());
    }

    void TakeHits(Input& input) {
        const std::size_t count = input.Number() % (BreakpointBytes::kHits + 1);
        for (std::size_t hit = 0; hit < count; ++hit) {
            m_bytes.SetNumber(BreakpointBytes::HitAt(hit) + 8, 1);
        }
    }

    void Match(Input& input) {
        const std::u16string channel = TakeText(input);
        const std::u16string text = TakeText(input);
        const std::uint32_t process = input.Byte() % 4;
        const std::uint32_t thread = input.Byte() % 4;
        const LOGUTILS::WideString wideChannel(channel.begin(), channel.end());
        const LOGUTILS::WideString wideText(text.begin(), text.end());
        const auto* const found =
            LOGUTILS::FindBreakpoint(Get(), {wideChannel, process, thread, wideText});

        const auto* expected = static_cast<const LOGUTILS::LogBreakpoint*>(nullptr);
        const auto count = static_cast<std::int32_t>(m_bytes.Number(BreakpointBytes::kCountAt));
        for (std::size_t n = BreakpointBytes::kBreakpoints; count > 0 && n-- > 0;) {
            const std::uint32_t ofProcess = m_bytes.Number(BreakpointBytes::ProcessAt(n));
            const std::uint32_t ofThread = m_bytes.Number(BreakpointBytes::ThreadAt(n));
            if (!m_bytes.IsZero(BreakpointBytes::IdAt(n), 16) &&
                m_bytes.Number(BreakpointBytes::EnabledAt(n)) != 0 &&
                (ofProcess == 0 || ofProcess == process) && (ofThread == 0 || ofThread == thread) &&
                Upper(m_bytes.Text(BreakpointBytes::ChannelAt(n), 260)) == Upper(channel) &&
                text.find(m_bytes.Text(BreakpointBytes::PatternAt(n), 1024)) != text.npos) {
                expected = &Get().m_breakpoints[n];
            }
        }
        Require(found == expected, "the first that matches is found");
    }

    void FindFree() {
        std::size_t hit = 0;
        while (hit < BreakpointBytes::kHits && !m_bytes.IsFree(hit)) {
            ++hit;
        }
        Require(LOGUTILS::FindFreeHit(Get()) ==
                    (hit < BreakpointBytes::kHits ? &Get().m_hits[hit] : nullptr),
                "the first free hit record is found");
    }

    std::vector<unsigned char> m_memory = std::vector<unsigned char>(BreakpointBytes::kSize);
    BreakpointBytes m_bytes = BreakpointBytes(m_memory.data());
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Table table;
    Input input(data, size);
    for (std::size_t step = 0; step < kMostSteps && !input.AtEnd(); ++step) {
        table.Step(input);
    }
    return 0;
}
