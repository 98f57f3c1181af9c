#include "log/dbg/LogConfigBlock.h"

#include <cstring>
#include <type_traits>

namespace LOGUTILS {
namespace {

constexpr std::uint32_t kFlagsOfFreeEntry = kFollowsGlobalPath;
constexpr std::uint32_t kFlagsOfTakenEntry = 0xFFFF;

WideView AsStored(WideView name) {
    return name.substr(0, kNameRoom - 1);
}

// The entry of that name or else the first free one; null when every entry has another name.
template <typename Block>
auto* FindOrFree(Block& block, WideView name) {
    for (auto& entry : block.m_modules) {
        const WideView taken = TextIn(entry.m_szName);
        if (taken.empty() || EqualIgnoringCase(taken, AsStored(name))) {
            return &entry;
        }
    }
    return static_cast<std::remove_reference_t<decltype(block.m_modules[0])>*>(nullptr);
}

template <typename Block>
auto* Find(Block& block, WideView name) {
    auto* pEntry = FindOrFree(block, name);
    return pEntry == nullptr || TextIn(pEntry->m_szName).empty() ? nullptr : pEntry;
}

}  // namespace

void ClearBlock(LogConfigBlock& block) {
    std::memset(&block, 0, sizeof(block));
    block.m_dwMagic = kBlockMagic;
    block.m_dwEndMagic = kBlockMagic;
    block.m_nGlobalLevel = kNoLevel;
    for (LogModuleEntry& entry : block.m_modules) {
        entry.m_dwFlags = kFlagsOfFreeEntry;
    }
}

bool IsIntact(const LogConfigBlock& block) {
    return block.m_dwMagic == kBlockMagic && block.m_dwEndMagic == kBlockMagic;
}

LogModuleEntry* FindModule(LogConfigBlock& block, WideView name) {
    return Find(block, name);
}

const LogModuleEntry* FindModule(const LogConfigBlock& block, WideView name) {
    return Find(block, name);
}

LogModuleEntry* FindOrTakeModule(LogConfigBlock& block, WideView name) {
    if (name.empty()) {
        return nullptr;
    }
    LogModuleEntry* pEntry = FindOrFree(block, name);
    if (pEntry != nullptr && TextIn(pEntry->m_szName).empty()) {
        PutText(pEntry->m_szName, name);
        pEntry->m_nLevel = kNoLevel;
        pEntry->m_dwFlags = kFlagsOfTakenEntry;
    }
    return pEntry;
}

std::optional<WideString> PathOf(const LogConfigBlock& block, WideView name, bool bIgnoreGlobal) {
    const WideView global = TextIn(block.m_szGlobalPath);
    if (name.empty()) {
        return WideString(global);
    }
    const LogModuleEntry* pEntry = FindModule(block, name);
    const bool bFollowsGlobal = pEntry == nullptr || (pEntry->m_dwFlags & kFollowsGlobalPath) != 0;
    if (bFollowsGlobal && !global.empty() && !bIgnoreGlobal) {
        return WideString(global);
    }
    if (pEntry == nullptr) {
        return std::nullopt;
    }
    return WideString(TextIn(pEntry->m_szPath));
}

void SetPath(LogConfigBlock& block, WideView name, WideView path) {
    if (name.empty() || !TextIn(block.m_szGlobalPath).empty()) {
        PutText(block.m_szGlobalPath, path);
    } else if (LogModuleEntry* pEntry = FindOrTakeModule(block, name)) {
        PutText(pEntry->m_szPath, path);
    }
}

std::int32_t LevelOf(const LogConfigBlock& block, WideView name) {
    const LogModuleEntry* pEntry = FindModule(block, name);
    const bool bFollowsGlobal = pEntry == nullptr || (pEntry->m_dwFlags & kFollowsGlobalLevel) != 0;
    if (bFollowsGlobal && block.m_nGlobalLevel != kNoLevel) {
        return block.m_nGlobalLevel;
    }
    return pEntry == nullptr ? kNoLevel : pEntry->m_nLevel;
}

}  // namespace LOGUTILS
