#include "tools/mirqos-logview/HeldThreads.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "log/dbg/win32/NewGuid.h"
#include "tools/mirqos-logview/Failure.h"
#include "tools/mirqos-logview/OtherThread.h"
#include "tools/mirqos-logview/RecordLine.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogView {

using LOGUTILS::LogBreakpoint;
using LOGUTILS::LogHit;

namespace {

constexpr std::size_t kMostLines = 10000;  // as many as there are hits

std::string Shown(LOGUTILS::WideView text) {
    return Tool::Printable(Tool::ToUtf8(text));
}

std::string Describe(const LogBreakpoint& breakpoint) {
    std::string text = "\"" + Shown(LOGUTILS::TextIn(breakpoint.m_szPattern)) + "\" in " +
                       Shown(LOGUTILS::TextIn(breakpoint.m_szChannel));
    if (breakpoint.m_dwProcessId != 0) {
        text += ", process " + std::to_string(breakpoint.m_dwProcessId);
    }
    if (breakpoint.m_dwThreadId != 0) {
        text += ", thread " + std::to_string(breakpoint.m_dwThreadId);
    }
    return text;
}

}  // namespace

HeldThreads::HeldThreads(std::function<void(const std::string&)> note)
    : m_note(std::move(note)), m_copy(std::make_unique<LOGUTILS::LogBreakpointTable>()) {
}

std::size_t HeldThreads::Add(const BreakpointWish& wish) {
    const std::optional<LOGUTILS::LogGuid> id = LOGUTILS::NewGuid();
    if (!id) {
        throw Failure(ExitCode::SystemRefused, "the system gives no id for a breakpoint");
    }
    std::size_t number = 0;
    m_table.Hold([&](auto& table) { number = AddBreakpoint(table, wish, *id); });
    TakeCopy();
    return number;
}

bool HeldThreads::Remove(std::size_t number) {
    bool removed = false;
    m_table.Hold([&](auto& table) { removed = RemoveBreakpoint(table, number); });
    TakeCopy();
    return removed;
}

std::string HeldThreads::Breakpoints() const {
    std::string text;
    for (std::size_t n = 0; n < std::size(m_copy->m_breakpoints); ++n) {
        const LogBreakpoint& breakpoint = m_copy->m_breakpoints[n];
        if (!LOGUTILS::IsZero(breakpoint.m_id)) {
            text += "breakpoint " + std::to_string(n + 1) + ": " + Describe(breakpoint) + "\n";
        }
    }
    return text.empty() ? "no breakpoints\n" : text;
}

std::string HeldThreads::Held() const {
    std::string text;
    for (const auto& [number, thread] : m_threads) {
        text += "held " + std::to_string(number) + ": " + thread.where + "\n";
    }
    return text.empty() ? "no thread is held\n" : text;
}

void HeldThreads::Remember(const NSDBG::CLogMessage& message) {
    const std::uint32_t process = message.GetProcessId();
    const std::uint32_t thread = message.GetThreadId();
    if (LOGUTILS::FindBreakpoint(
            *m_copy, {message.GetChannel(), process, thread, message.GetText()}) == nullptr) {
        return;
    }
    if (m_lines.size() >= kMostLines) {
        m_lines.clear();
    }
    m_lines[{process, thread}] = LineOf(message);
}

void HeldThreads::Look(const std::function<void()>& readRecords) {
    TakeCopy();
    std::vector<LogHit> newHits = HitsIn(*m_copy);
    newHits.erase(std::remove_if(newHits.begin(), newHits.end(),
                                 [this](const LogHit& hit) {
                                     return std::any_of(m_threads.begin(), m_threads.end(),
                                                        [&](const auto& known) {
                                                            return known.second.hit.m_hitId ==
                                                                   hit.m_hitId;
                                                        });
                                 }),
                  newHits.end());
    if (!newHits.empty()) {
        readRecords();
    }
    for (const LogHit& hit : newHits) {
        Admit(hit);
    }
    Tend();
}

bool HeldThreads::Release(std::size_t number) {
    const auto found = m_threads.find(number);
    if (found == m_threads.end()) {
        return false;
    }
    found->second.released = true;
    Tend();
    return true;
}

std::size_t HeldThreads::ReleaseAll() {
    const std::size_t count = m_threads.size();
    for (auto& [number, thread] : m_threads) {
        thread.released = true;
    }
    Tend();
    return count;
}

void HeldThreads::Admit(const LogHit& hit) {
    Thread thread{hit, OpenThreadById(hit.m_dwThreadId), WhereOf(hit)};
    m_note("held " + std::to_string(++m_lastNumber) + ": " + thread.where);
    m_threads.emplace(m_lastNumber, std::move(thread));
}

std::string HeldThreads::WhereOf(const LogHit& hit) {
    std::string where = "process " + std::to_string(hit.m_dwProcessId) + ", thread " +
                        std::to_string(hit.m_dwThreadId) + ", on: ";
    const auto line = m_lines.find({hit.m_dwProcessId, hit.m_dwThreadId});
    if (line == m_lines.end()) {
        // lost, or the text lies beyond what a record holds
        return where + "a line that was not seen";
    }
    where += line->second;
    m_lines.erase(line);
    return where;
}

/// Releases whom it may, and forgets who has ended.
void HeldThreads::Tend() {
    for (auto it = m_threads.begin(); it != m_threads.end();) {
        const auto& [number, thread] = *it;
        if (thread.released && m_table.Release(thread.hit.m_hitId)) {
            m_note("released " + std::to_string(number));
            it = m_threads.erase(it);
        } else if (HasEnded(thread.handle, thread.hit.m_dwThreadId)) {
            m_table.Hold([&hit = thread.hit](auto& table) { ClearHit(table, hit.m_hitId); });
            m_note("held " + std::to_string(number) + " has ended");
            it = m_threads.erase(it);
        } else {
            ++it;
        }
    }
}

void HeldThreads::TakeCopy() {
    m_table.Hold([this](const auto& table) { *m_copy = table; });
}

}  // namespace Mirqos::LogView
