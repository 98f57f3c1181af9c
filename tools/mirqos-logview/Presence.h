#pragma once

#include "log/dbg/win32/Owned.h"

namespace Mirqos::LogView {

/// Tells every process that a viewer runs, as long as it lives.
class Presence {
public:
    /// Throws Failure: OtherViewer when another one runs, else SystemRefused.
    Presence();

private:
    LOGUTILS::KernelObject m_event;
};

}  // namespace Mirqos::LogView
