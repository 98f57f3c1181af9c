#pragma once

#include "log/dbg/WideText.h"

namespace LOGUTILS {

/// Makes the folder of a log file, with missing parents; lets services that run as LocalService
/// write there; and compresses it if it is the log root. What fails is said in the trace, and the
/// file may be opened all the same.
void PrepareLogFolder(const WideString& folder, WideView logRoot);

}  // namespace LOGUTILS
