#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "log/dbg/LogBreakpoints.h"
#include "log/dbg/win32/CLogMessage.h"
#include "log/dbg/win32/Owned.h"
#include "tools/mirqos-logview/BreakpointEdit.h"
#include "tools/mirqos-logview/BreakpointTable.h"

namespace Mirqos::LogView {

/// The viewer's breakpoints, and the threads that are held at them.
class HeldThreads {
public:
    /// `note` is told what happens.
    explicit HeldThreads(std::function<void(const std::string&)> note);

    HANDLE HitEvent() const { return m_table.HitEvent(); }

    /// Returns its number; 0 when the table is full. Throws Failure (SystemRefused).
    std::size_t Add(const BreakpointWish& wish);
    bool Remove(std::size_t number);
    /// Lists, one line for each, for the user.
    std::string Breakpoints() const;
    std::string Held() const;

    /// Remembers the record if a thread may be held at it. Each record that is read passes here.
    void Remember(const NSDBG::CLogMessage& message);

    /// Looks who is held. `readRecords` is called before that is told, so that the lines are known.
    void Look(const std::function<void()>& readRecords);

    /// Lets a thread go on, as soon as it waits for that; false when there is none of that number.
    bool Release(std::size_t number);
    /// Returns how many there are.
    std::size_t ReleaseAll();

private:
    struct Thread {
        LOGUTILS::LogHit hit;
        LOGUTILS::KernelObject handle;
        std::string where;  ///< "process 4, thread 8, on: the line"
        bool released = false;
    };
    using ThreadKey = std::pair<std::uint32_t, std::uint32_t>;

    void Admit(const LOGUTILS::LogHit& hit);
    std::string WhereOf(const LOGUTILS::LogHit& hit);
    void Tend();
    void TakeCopy();

    std::function<void(const std::string&)> m_note;
    BreakpointTable m_table;
    std::unique_ptr<LOGUTILS::LogBreakpointTable> m_copy;  ///< as it was last seen
    std::map<std::size_t, Thread> m_threads;               ///< by number, from 1
    std::size_t m_lastNumber = 0;
    std::map<ThreadKey, std::string> m_lines;  ///< of threads that may be held
};

}  // namespace Mirqos::LogView
