#pragma once

#include "log/dbg/LogConfigBlock.h"
#include "tools/mirqos-logctl/Command.h"

namespace Mirqos::LogControl {

/// Changes the block as `command` says, which is one of the commands that change it. Such a change
/// takes effect with the module's next line. `ignoresGlobalPath`: the process does not use the path
/// of all modules, whatever the block says. Throws Failure (NoModule, NotFollowed) before anything
/// is changed. The caller holds the block's mutex.
///
/// The path of all modules and a module with a path of its own never stand together afterwards: the
/// library stores a path that it finds changed, and while there is a path of all modules it stores
/// it there, so that every module would move along.
void Edit(LOGUTILS::LogConfigBlock& block, const Command& command, bool ignoresGlobalPath);

}  // namespace Mirqos::LogControl
