#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "log/dbg/win32/Trace.h"

namespace Mirqos::Test {

/// Keeps what the logging library says of itself for as long as it lives. One at a time; any
/// thread may use it.
class TraceRecording {
public:
    TraceRecording();
    ~TraceRecording();
    TraceRecording(const TraceRecording&) = delete;
    TraceRecording& operator=(const TraceRecording&) = delete;

    std::vector<std::wstring> Texts() const;
    /// How many texts contain `part`.
    std::size_t CountContaining(const std::wstring& part) const;

private:
    LOGUTILS::TraceSink m_former;
};

/// What this thread's traces begin with: "[process:thread] ".
std::wstring TracePrefix();

}  // namespace Mirqos::Test
