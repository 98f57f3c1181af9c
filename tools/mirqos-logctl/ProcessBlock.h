#pragma once

#include <cstdint>
#include <functional>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/win32/NamedMutex.h"
#include "log/dbg/win32/Owned.h"

namespace Mirqos::LogControl {

/// Whether that process has a block that this one can open.
bool HasBlock(std::uint32_t processId);

/// The log configuration block of another process, under its global or else its local name. The
/// local names of other sessions are out of reach.
class ProcessBlock {
public:
    /// Throws Failure: NoBlock when there is none, SystemRefused when it cannot be opened.
    explicit ProcessBlock(std::uint32_t processId);

    /// Does `work` while the block's mutex is held, for which it waits 5 seconds at most. When the
    /// owner before ended while it held the mutex, the block is used as it is. Throws Failure:
    /// Busy, SystemRefused, or Damaged when a magic of the block is not in its place.
    void Hold(const std::function<void(LOGUTILS::LogConfigBlock&)>& work) const;

private:
    std::uint32_t m_processId;
    LOGUTILS::View m_view;
    LOGUTILS::NamedMutex m_mutex;
};

}  // namespace Mirqos::LogControl
