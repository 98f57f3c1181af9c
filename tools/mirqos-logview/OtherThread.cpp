#include "tools/mirqos-logview/OtherThread.h"

namespace Mirqos::LogView {

LOGUTILS::KernelObject OpenThreadById(std::uint32_t id) {
    return LOGUTILS::KernelObject(OpenThread(SYNCHRONIZE, FALSE, id));
}

bool HasEnded(const LOGUTILS::KernelObject& thread, std::uint32_t id) {
    if (thread) {
        return WaitForSingleObject(thread.Get(), 0) == WAIT_OBJECT_0;
    }
    return !OpenThreadById(id) && GetLastError() == ERROR_INVALID_PARAMETER;
}

}  // namespace Mirqos::LogView
