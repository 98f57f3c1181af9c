#include "tools/mirqos-logctl/Report.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

#include "tools/mirqos-logctl/Modules.h"
#include "tools/mirqos/Json.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogControl {

using LOGUTILS::kFollowsGlobalLevel;
using LOGUTILS::kFollowsGlobalPath;
using LOGUTILS::LogModuleEntry;
using LOGUTILS::TextIn;
using LOGUTILS::WideView;
using Tool::Json;

namespace {

constexpr const char* kNothing = "-";

using Row = std::vector<std::string>;

std::string Cell(WideView text) {
    return text.empty() ? kNothing : Tool::Printable(Tool::ToUtf8(text));
}

std::string LevelCell(std::int32_t level) {
    return level < 0 ? kNothing : std::to_string(level);
}

Json LevelMember(std::int32_t level) {
    return level < 0 ? Json(nullptr) : Json(level);
}

/// The rows below each other, all columns but the last padded to their widest cell.
std::string Table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size(), 0);
    for (const Row& row : rows) {
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            widths[i] = std::max(widths[i], Tool::CountCharacters(row[i]));
        }
    }
    std::string text;
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            text += row[i];
            if (i + 1 < row.size()) {
                text += std::string(widths[i] - Tool::CountCharacters(row[i]) + 2, ' ');
            }
        }
        text += '\n';
    }
    return text;
}

bool Follows(const LogModuleEntry& module, std::uint32_t flag) {
    return (module.m_dwFlags & flag) != 0;
}

std::string FollowsCell(const LogModuleEntry& module) {
    const bool path = Follows(module, kFollowsGlobalPath);
    const bool level = Follows(module, kFollowsGlobalLevel);
    if (path && level) {
        return "path, level";
    }
    return path ? "path" : level ? "level" : kNothing;
}

std::string FlagsCell(const LogModuleEntry& module) {
    std::array<char, 11> text{};
    std::snprintf(text.data(), text.size(), "0x%04lx",
                  static_cast<unsigned long>(module.m_dwFlags));
    return text.data();
}

LOGUTILS::WideString LogFileOf(const BlockState& state, const LogModuleEntry& module) {
    return LOGUTILS::PathOf(state.block, TextIn(module.m_szName), state.ignoresGlobalPath)
        .value_or(LOGUTILS::WideString());
}

std::int32_t LevelOf(const BlockState& state, const LogModuleEntry& module) {
    return LOGUTILS::LevelOf(state.block, TextIn(module.m_szName));
}

Json ModuleAsJson(const BlockState& state, const LogModuleEntry& module) {
    return {{"name", Tool::ToUtf8(TextIn(module.m_szName))},
            {"logFile", Tool::ToUtf8(LogFileOf(state, module))},
            {"level", LevelMember(LevelOf(state, module))},
            {"ownPath", Tool::ToUtf8(TextIn(module.m_szPath))},
            {"ownLevel", LevelMember(module.m_nLevel)},
            {"followsGlobalPath", Follows(module, kFollowsGlobalPath)},
            {"followsGlobalLevel", Follows(module, kFollowsGlobalLevel)},
            {"flags", module.m_dwFlags}};
}

}  // namespace

std::string ListAsText(const std::vector<Process>& processes) {
    std::vector<Row> rows = {{"PID", "EXECUTABLE"}};
    for (const Process& process : processes) {
        rows.push_back({std::to_string(process.id), Cell(process.executable)});
    }
    return Table(rows);
}

std::string ListAsJson(const std::vector<Process>& processes) {
    Json list = Json::array();
    for (const Process& process : processes) {
        list.push_back({{"pid", process.id}, {"executable", Tool::ToUtf8(process.executable)}});
    }
    return Tool::Dump({{"processes", std::move(list)}});
}

std::string StateAsText(const BlockState& state) {
    std::vector<Row> rows = {
        {"MODULE", "LEVEL", "OWN LEVEL", "FOLLOWS", "FLAGS", "LOG FILE", "OWN PATH"}};
    for (const LogModuleEntry* const module : ModulesOf(state.block)) {
        rows.push_back({Cell(TextIn(module->m_szName)), LevelCell(LevelOf(state, *module)),
                        LevelCell(module->m_nLevel), FollowsCell(*module), FlagsCell(*module),
                        Cell(LogFileOf(state, *module)), Cell(TextIn(module->m_szPath))});
    }
    return "process " + std::to_string(state.process.id) + ", " + Cell(state.process.executable) +
           "\nlevel of all modules: " + LevelCell(state.block.m_nGlobalLevel) +
           "\npath of all modules:  " + Cell(TextIn(state.block.m_szGlobalPath)) +
           (state.ignoresGlobalPath ? " (ignored by this process)" : "") + "\n\n" + Table(rows);
}

std::string StateAsJson(const BlockState& state) {
    Json modules = Json::array();
    for (const LogModuleEntry* const module : ModulesOf(state.block)) {
        modules.push_back(ModuleAsJson(state, *module));
    }
    return Tool::Dump({{"pid", state.process.id},
                       {"executable", Tool::ToUtf8(state.process.executable)},
                       {"globalPath", Tool::ToUtf8(TextIn(state.block.m_szGlobalPath))},
                       {"globalLevel", LevelMember(state.block.m_nGlobalLevel)},
                       {"ignoresGlobalPath", state.ignoresGlobalPath},
                       {"modules", std::move(modules)}});
}

}  // namespace Mirqos::LogControl
