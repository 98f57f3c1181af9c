#pragma once

#include <memory>

#include "log/dbg/win32/CLogConfig.h"

namespace NSDBG {

/// Makes instances beside the one of the process, which end with their owner.
struct LogConfigTestAccess {
    struct Destroy {
        void operator()(CLogConfig* config) const { delete config; }
    };
    using Instance = std::unique_ptr<CLogConfig, Destroy>;

    static Instance New() { return Instance(new CLogConfig); }
};

}  // namespace NSDBG
