#pragma once

#include <cstddef>

#include "log/dbg/WideText.h"
#include "log/dbg/win32/CLogShareMemory.h"
#include "log/dbg/win32/Owned.h"

namespace Mirqos::LogView {

/// New records of a channel, and how many before them were lost because nobody read them in time.
struct NewMessages {
    NSDBG::LogMessages messages;
    std::size_t lost = 0;
    bool lostMore = false;  ///< more than `lost` were
};

/// The channel of one executable, whose processes are asked for their lines as long as it lives.
class WatchedChannel {
public:
    /// Throws Failure (SystemRefused).
    explicit WatchedChannel(const LOGUTILS::WideString& executable);

    const LOGUTILS::WideString& Executable() const { return m_executable; }
    /// Signalled when there is something to read.
    HANDLE Event() const { return m_event.Get(); }

    NewMessages Read();

private:
    LOGUTILS::WideString m_executable;
    LOGUTILS::KernelObject m_event;
    NSDBG::CLogShareMemory m_memory;
};

}  // namespace Mirqos::LogView
