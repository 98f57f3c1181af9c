#pragma once

#include <string>

#include "log/dbg/LogRing.h"
#include "log/dbg/win32/Owned.h"

namespace Mirqos::Bench {

/// Does what no line in the live channel can do without: the calls to Windows that handing a record
/// to a viewer consists of, and the record's bytes, which are fixed.
class LogChannelFloor {
public:
    /// A viewer has to be there and to listen to the channel.
    explicit LogChannelFloor(const std::wstring& channel);

    /// All that a line cannot do without while there is no viewer.
    static void LookForViewer();
    void WriteLine() const;

private:
    LOGUTILS::KernelObject m_event;
    LOGUTILS::KernelObject m_mutex;
    LOGUTILS::KernelObject m_ring;
    LOGUTILS::KernelObject m_tableMutex;
    LOGUTILS::KernelObject m_table;
    LOGUTILS::LogRecord m_record = {};
};

}  // namespace Mirqos::Bench
