#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/local_time.h"

namespace Mirqos {

/// What every log line begins with: local time, level, process, thread and, unless it is 0, the
/// error code. It ends in one blank, after which the message follows.
struct LinePrefix {
    LocalTime time;
    int level;
    std::uint32_t processId;
    std::uint32_t threadId;
    int errorCode;
};

/// The prefix of a line that the calling thread writes now.
LinePrefix CurrentLinePrefix(int level, int errorCode);

/// Writes the prefix into `text`, which has `size` characters; as FormatBounded returns.
int FormatLinePrefix(char* text, std::size_t size, const LinePrefix& prefix);

}  // namespace Mirqos
