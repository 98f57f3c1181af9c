#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace Mirqos::Tool {

/// What a progress line tells.
struct ProgressState {
    std::string phase;                  ///< "reading", "sending", ...
    std::string name;                   ///< of the file or object
    std::optional<std::uint64_t> done;  ///< bytes; nothing while the work gives no figure
    std::optional<std::uint64_t> total;
    double seconds = 0;  ///< since the phase began
};

/// One line of at most `columns` - 1 characters, so that a terminal does not wrap it:
///     sending  photo.tif  [#######-------]  45%  9.0 MiB of 20.0 MiB  3.2 MiB/s  0:04 left
/// The bar needs a total; the time left needs a second of experience. Where space is short the bar
/// goes first, then the front of the name.
std::string FormatProgressBar(const ProgressState& state, std::size_t columns);

/// The same without bar, for a log file.
std::string FormatProgressText(const ProgressState& state);

}  // namespace Mirqos::Tool
