#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/win32/NamedMutex.h"
#include "log/dbg/win32/Owned.h"

namespace Mirqos::Test {

/// The log configuration block of a process as a tool outside it sees it: found by the process id,
/// edited by the documented bytes. The process must have logged or be logging.
class OutsideConfig {
public:
    explicit OutsideConfig(std::uint32_t dwProcessId);

    bool IsOpen() const { return static_cast<bool>(m_view); }
    /// Does `edit` on the block while its mutex is held.
    void Edit(const std::function<void(LOGUTILS::LogConfigBlock&)>& edit) const;

private:
    LOGUTILS::NamedMutex m_mutex;
    LOGUTILS::View m_view;
};

}  // namespace Mirqos::Test
