#pragma once

#include <vector>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/WideText.h"

namespace Mirqos::LogControl {

/// The entries that modules have taken, in order: those before the first free one. They are const
/// where the block is.
template <typename Block>
auto ModulesOf(Block& block) {
    std::vector<decltype(&block.m_modules[0])> modules;
    for (auto& entry : block.m_modules) {
        if (LOGUTILS::TextIn(entry.m_szName).empty()) {
            break;
        }
        modules.push_back(&entry);
    }
    return modules;
}

}  // namespace Mirqos::LogControl
