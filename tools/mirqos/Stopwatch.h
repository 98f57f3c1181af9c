#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

/// Runs from its construction on.
class Stopwatch {
public:
    double Seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_begin).count();
    }

    /// "20.0 MiB in 0:03 (6.7 MiB/s)", without the rate where it would say nothing.
    std::string Describe(std::uint64_t bytes) const {
        const double seconds = Seconds();
        std::string text =
            FormatSize(bytes) + " in " + FormatDuration(static_cast<std::uint64_t>(seconds));
        if (bytes > 0 && seconds > 0.001) {
            const double rate = static_cast<double>(bytes) / seconds;
            text += " (" + FormatSize(static_cast<std::uint64_t>(rate)) + "/s)";
        }
        return text;
    }

private:
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

}  // namespace Mirqos::Tool
