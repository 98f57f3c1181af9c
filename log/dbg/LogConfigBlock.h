#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/WideText.h"

/// The log configuration block of a process: shared memory that the process's log outputs read
/// before each line, and that tools outside the process edit while it runs. docs/formats.md
/// describes it for those who write such tools.
namespace LOGUTILS {

inline constexpr std::uint32_t kBlockMagic = 59110;
inline constexpr std::size_t kBlockModules = 1024;
inline constexpr std::int32_t kNoLevel = -1;
inline constexpr std::uint32_t kFollowsGlobalPath = 1;
inline constexpr std::uint32_t kFollowsGlobalLevel = 2;

/// What the block says of one module. An empty name marks an entry that is free, and all after it.
struct LogModuleEntry {
    WideChar m_szName[kNameRoom];
    WideChar m_szPath[kPathRoom];
    std::int32_t m_nLevel;
    std::uint32_t m_dwFlags;
};
static_assert(offsetof(LogModuleEntry, m_szPath) == 128);
static_assert(offsetof(LogModuleEntry, m_nLevel) == 1152);
static_assert(offsetof(LogModuleEntry, m_dwFlags) == 1156);
static_assert(sizeof(LogModuleEntry) == 1160);

struct LogConfigBlock {
    std::uint32_t m_dwMagic;
    WideChar m_szGlobalPath[kPathRoom];
    std::int32_t m_nGlobalLevel;
    LogModuleEntry m_modules[kBlockModules];
    std::uint32_t m_dwEndMagic;
};
static_assert(offsetof(LogConfigBlock, m_szGlobalPath) == 4);
static_assert(offsetof(LogConfigBlock, m_nGlobalLevel) == 1028);
static_assert(offsetof(LogConfigBlock, m_modules) == 1032);
static_assert(offsetof(LogConfigBlock, m_dwEndMagic) == 1188872);
static_assert(sizeof(LogConfigBlock) == 1188876);

/// What the names of a process's block and of its mutex begin with, before the process id in
/// decimal. The block's lies in the namespace "Global\" or, where that was refused, in "Local\".
inline constexpr char kBlockMutexName[] =
    "Global\\LOGCFG_MUTEX_NAME_C8AAE32A-9619-4685-B766-F003823BEEE3_";
inline constexpr char kBlockName[] = "LOGCFG_SM_NAME_C8AAE32A-9619-4685-B766-F003823BEEE3_";

// The rules over a block. The caller holds the block's mutex. A name longer than its room counts as
// cut to it, so that it is found again under what was stored.

/// Makes the block that of a process in which no module has registered.
void ClearBlock(LogConfigBlock& block);
/// Whether both magics stand. Nothing else may be believed of a block that is not intact.
bool IsIntact(const LogConfigBlock& block);

/// The entry of that name, in any letter case; null when there is none.
LogModuleEntry* FindModule(LogConfigBlock& block, WideView name);
const LogModuleEntry* FindModule(const LogConfigBlock& block, WideView name);
/// The same, but takes a free entry when there is none; null when none is free or the name is
/// empty.
LogModuleEntry* FindOrTakeModule(LogConfigBlock& block, WideView name);

/// Which file that module is to log to; nothing when the block does not say. An empty name asks for
/// the path of all modules, which may be empty.
std::optional<WideString> PathOf(const LogConfigBlock& block, WideView name, bool bIgnoreGlobal);
/// Sets the path of all modules when there is one or when `name` is empty, else that of the module:
/// so the successor of a full file that all share moves all of them.
void SetPath(LogConfigBlock& block, WideView name, WideView path);
/// The level that the block sets for that module; below 0 when it sets none.
std::int32_t LevelOf(const LogConfigBlock& block, WideView name);

}  // namespace LOGUTILS
