#include "log/dbg/win32/Trace.h"

#include <atomic>
#include <cstdarg>

#include "platform/format.h"

namespace LOGUTILS {
namespace {

std::atomic<TraceSink> g_sink{nullptr};

}  // namespace

void Trace(const wchar_t* pszFormat, ...) {
    const TraceSink sink = g_sink;
    if (sink == nullptr) {
        return;
    }
    wchar_t szText[2048];  // two paths and a sentence
    std::va_list arguments;
    va_start(arguments, pszFormat);
    Mirqos::FormatBoundedV(szText, sizeof(szText) / sizeof(szText[0]), pszFormat, arguments);
    va_end(arguments);
    sink(szText);
}

TraceSink SetTraceSink(TraceSink sink) {
    return g_sink.exchange(sink);
}

}  // namespace LOGUTILS
