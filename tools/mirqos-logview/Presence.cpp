#include "tools/mirqos-logview/Presence.h"

#include "log/dbg/win32/NamedEvent.h"
#include "log/dbg/win32/ViewerNames.h"
#include "tools/mirqos-logview/Failure.h"

namespace Mirqos::LogView {

namespace {

constexpr int kAttempts = 60;
constexpr DWORD kPause = 50;  // ms

}  // namespace

// Writers open the event for a moment with each line, which keeps that of a viewer that has just
// gone alive for a moment: only one that stays tells of another viewer.
Presence::Presence() {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        SetLastError(ERROR_SUCCESS);
        LOGUTILS::KernelObject event = LOGUTILS::CreateNamedEvent(LOGUTILS::kViewerPresenceName);
        const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
        Require(static_cast<bool>(event), "the event that announces a viewer");
        if (!existed) {
            m_event = std::move(event);
            return;
        }
        event.Reset();
        Sleep(kPause);
    }
    throw Failure(ExitCode::OtherViewer, "another log viewer is running");
}

}  // namespace Mirqos::LogView
