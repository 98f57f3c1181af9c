#pragma once

namespace LOGUTILS {

/// Whether a log viewer runs, which costs one look-up of an event.
bool IsViewerPresent();

}  // namespace LOGUTILS
