#include "platform/local_time.h"

#include <windows.h>

namespace Mirqos {

LocalTime CurrentLocalTime() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return {now.wYear,   now.wMonth,  now.wDay,         now.wHour,
            now.wMinute, now.wSecond, now.wMilliseconds};
}

}  // namespace Mirqos
