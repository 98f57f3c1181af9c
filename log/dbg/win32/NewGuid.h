#pragma once

#include <optional>

#include "log/dbg/LogBreakpoints.h"

namespace LOGUTILS {

/// An id that no other has on this machine; nothing when the system gives none.
std::optional<LogGuid> NewGuid();

}  // namespace LOGUTILS
