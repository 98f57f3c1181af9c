#include "log/dbg/win32/ViewerPresence.h"

#include "log/dbg/win32/NamedEvent.h"
#include "log/dbg/win32/ViewerNames.h"

namespace LOGUTILS {

bool IsViewerPresent() {
    // closed again at once: the event has to vanish with the viewer
    return static_cast<bool>(OpenNamedEvent(kViewerPresenceName));
}

}  // namespace LOGUTILS
