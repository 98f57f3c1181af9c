#pragma once

#include "log/dbg/SummaryHeader.h"

namespace LOGUTILS {

/// What the header of a log file tells of this machine; `nInstallKinds` are the components of the
/// product on it.
SummaryFacts ReadSummaryFacts(unsigned nInstallKinds);

}  // namespace LOGUTILS
