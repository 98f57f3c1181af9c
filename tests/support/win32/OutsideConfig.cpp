#include "tests/support/win32/OutsideConfig.h"

#include <gtest/gtest.h>

#include "log/dbg/win32/SharedMemory.h"

namespace Mirqos::Test {

using namespace LOGUTILS;

OutsideConfig::OutsideConfig(std::uint32_t dwProcessId)
    : m_mutex(NamedMutex::Open(WidenAscii(kBlockMutexName) + Decimal(dwProcessId))) {
    const SharedMemory memory = OpenSharedMemory(WidenAscii(kBlockName) + Decimal(dwProcessId));
    if (memory.m_mapping) {
        m_view = MapSharedMemory(memory.m_mapping, sizeof(LogConfigBlock));
    }
}

void OutsideConfig::Edit(const std::function<void(LogConfigBlock&)>& edit) const {
    const MutexHold hold = m_mutex.Wait(INFINITE);
    ASSERT_TRUE(hold.Owns());
    ASSERT_TRUE(IsOpen());
    edit(*static_cast<LogConfigBlock*>(m_view.Get()));
}

}  // namespace Mirqos::Test
