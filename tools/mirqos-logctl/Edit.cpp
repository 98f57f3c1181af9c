#include "tools/mirqos-logctl/Edit.h"

#include <vector>

#include "tools/mirqos-logctl/Failure.h"
#include "tools/mirqos-logctl/Modules.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogControl {

using LOGUTILS::kFollowsGlobalLevel;
using LOGUTILS::kFollowsGlobalPath;
using LOGUTILS::kNoLevel;
using LOGUTILS::LogConfigBlock;
using LOGUTILS::LogModuleEntry;
using LOGUTILS::PutText;

namespace {

std::vector<LogModuleEntry*> Targets(LogConfigBlock& block, const Command& command) {
    if (!command.module) {
        return ModulesOf(block);
    }
    LogModuleEntry* const entry =
        command.module->empty() ? nullptr : LOGUTILS::FindModule(block, *command.module);
    if (entry == nullptr) {
        const std::string id = std::to_string(command.processId);
        throw Failure(ExitCode::NoModule,
                      "no module " + Tool::Printable(Tool::ToUtf8(*command.module)) +
                          " has registered in process " + id + "; mirqos-logctl show " + id +
                          " lists those that have");
    }
    return {entry};
}

void SetFlag(const std::vector<LogModuleEntry*>& modules, std::uint32_t flag) {
    for (LogModuleEntry* const module : modules) {
        module->m_dwFlags |= flag;
    }
}

void ClearFlag(const std::vector<LogModuleEntry*>& modules, std::uint32_t flag) {
    for (LogModuleEntry* const module : modules) {
        module->m_dwFlags &= ~flag;
    }
}

/// Ends the path of all modules. Those that follow it keep the file as their own, and follow no
/// longer: a module that follows is given its default path when its library registers it again.
void StopSharingPath(LogConfigBlock& block, bool ignored) {
    const auto shared = LOGUTILS::TextIn(block.m_szGlobalPath);
    if (!shared.empty() && !ignored) {
        for (LogModuleEntry* const module : ModulesOf(block)) {
            if ((module->m_dwFlags & kFollowsGlobalPath) != 0) {
                PutText(module->m_szPath, shared);
                module->m_dwFlags &= ~kFollowsGlobalPath;
            }
        }
    }
    PutText(block.m_szGlobalPath, {});
}

void SetLevel(LogConfigBlock& block, const Command& command,
              const std::vector<LogModuleEntry*>& modules) {
    if (command.module) {
        modules.front()->m_nLevel = command.level;
        ClearFlag(modules, kFollowsGlobalLevel);
    } else {
        block.m_nGlobalLevel = command.level;
        SetFlag(modules, kFollowsGlobalLevel);
    }
}

void ClearLevel(LogConfigBlock& block, const Command& command,
                const std::vector<LogModuleEntry*>& modules) {
    if (command.module) {
        modules.front()->m_nLevel = kNoLevel;
        SetFlag(modules, kFollowsGlobalLevel);
    } else {
        block.m_nGlobalLevel = kNoLevel;
    }
}

void SetPath(LogConfigBlock& block, const Command& command,
             const std::vector<LogModuleEntry*>& modules, bool ignored) {
    if (command.module) {
        // for the same reason as where a path ends that was shared
        ClearFlag(modules, kFollowsGlobalPath);
        PutText(modules.front()->m_szPath, command.path);
        StopSharingPath(block, ignored);
        return;
    }
    if (ignored) {
        throw Failure(ExitCode::NotFollowed,
                      "process " + std::to_string(command.processId) +
                          " ignores the path of all modules (DisableGlobalOption lists it); set "
                          "the path of each module");
    }
    PutText(block.m_szGlobalPath, command.path);
    SetFlag(modules, kFollowsGlobalPath);
}

}  // namespace

void Edit(LogConfigBlock& block, const Command& command, bool ignoresGlobalPath) {
    const std::vector<LogModuleEntry*> modules = Targets(block, command);
    switch (command.action) {
        case Action::SetLevel:
            SetLevel(block, command, modules);
            break;
        case Action::ClearLevel:
            ClearLevel(block, command, modules);
            break;
        case Action::SetPath:
            SetPath(block, command, modules, ignoresGlobalPath);
            break;
        case Action::ClearPath:
            if (command.module) {
                SetFlag(modules, kFollowsGlobalPath);
            } else {
                PutText(block.m_szGlobalPath, {});
            }
            break;
        case Action::Follow:
            SetFlag(modules, command.flag);
            break;
        case Action::Unfollow:
            ClearFlag(modules, command.flag);
            if (command.flag == kFollowsGlobalPath) {
                StopSharingPath(block, ignoresGlobalPath);
            }
            break;
        default:
            break;
    }
}

}  // namespace Mirqos::LogControl
