#include "log/dbg/LinePrefix.h"

#include "platform/format.h"
#include "platform/process.h"

namespace Mirqos {

LinePrefix CurrentLinePrefix(int level, int errorCode) {
    return {CurrentLocalTime(), level, CurrentProcessId(), CurrentThreadId(), errorCode};
}

int FormatLinePrefix(char* text, std::size_t size, const LinePrefix& prefix) {
    char time[96];  // seven numbers of at most 11 characters and six separators
    FormatBounded(time, sizeof(time), "%4d/%02d/%02d %02d:%02d:%02d:%03d", prefix.time.year,
                  prefix.time.month, prefix.time.day, prefix.time.hour, prefix.time.minute,
                  prefix.time.second, prefix.time.millisecond);
    const auto process = static_cast<long>(prefix.processId);
    const auto thread = static_cast<long>(prefix.threadId);
    if (prefix.errorCode == 0) {
        return FormatBounded(text, size, "[%s   %02d   %05ld   %05ld             ] ", time,
                             prefix.level, process, thread);
    }
    return FormatBounded(text, size, "[%s   %02d   %05ld   %05ld   0X%08x] ", time, prefix.level,
                         process, thread, static_cast<unsigned>(prefix.errorCode));
}

}  // namespace Mirqos
