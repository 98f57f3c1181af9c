#pragma once

#include <cstddef>
#include <string>

#include "log/dbg/win32/Owned.h"
#include "tests/support/ChannelBytes.h"

/// A log viewer for tests, written against docs/formats.md: it knows the documented names and bytes
/// and nothing of the library. Objects last as long as they do. Names of executables are ASCII.
///
/// While a viewer is announced, every process of the machine logs to the channels that somebody
/// listens to: tests that announce one run one at a time.
namespace Mirqos::Test {

/// "Global\..." and the like, open to everyone.
LOGUTILS::KernelObject MakeEvent(const std::wstring& name);
bool EventExists(const std::wstring& name);
bool MutexExists(const std::wstring& name);
bool MappingExists(const std::wstring& name);
/// Whether the auto-reset event is signalled, which this resets.
bool IsSignalled(const LOGUTILS::KernelObject& event);
/// Waits for it, half a minute at most.
bool WaitUntilSignalled(const LOGUTILS::KernelObject& event);
/// Leaves the mutex behind as one whose owner ended while it held it.
void Abandon(const std::wstring& mutexName);
/// Whether another thread can have the mutex at once.
bool IsFree(const std::wstring& mutexName);

/// Announces a viewer.
class AnnouncedViewer {
public:
    AnnouncedViewer();
    void Leave() { m_hPresence.Reset(); }

private:
    LOGUTILS::KernelObject m_hPresence;
};

/// The names of the objects of an executable's channel.
struct ChannelObjects {
    explicit ChannelObjects(const std::wstring& executable);
    std::wstring event;
    std::wstring mutex;
    std::wstring globalRing;
    std::wstring localRing;
};

/// Asks for the lines of an executable.
class ListenedChannel {
public:
    explicit ListenedChannel(const std::wstring& executable);

    const ChannelObjects& Names() const { return m_names; }
    bool IsTold() const { return IsSignalled(m_hEvent); }
    bool WaitForRecord() const { return WaitUntilSignalled(m_hEvent); }
    bool HasRing() const { return MappingExists(m_names.globalRing); }
    /// The ring that a writer made, which lives on with this object.
    RingBytes Ring();

private:
    ChannelObjects m_names;
    LOGUTILS::KernelObject m_hEvent;
    LOGUTILS::View m_ring;
};

inline constexpr wchar_t kHitEvent[] = L"Global\\3B66FDF6-4FBE-45F5-8A86-8915C3184D5B_EVENT";
inline constexpr wchar_t kTableMutex[] =
    L"Global\\3B66FDF6-4FBE-45F5-8A86-8915C3184D5B_MU_BREAKPOINTS";
inline constexpr wchar_t kGlobalTable[] =
    L"Global\\3B66FDF6-4FBE-45F5-8A86-8915C3184D5B_SM_BREAKPOINTS";
inline constexpr wchar_t kLocalTable[] =
    L"Local\\3B66FDF6-4FBE-45F5-8A86-8915C3184D5B_SM_BREAKPOINTS";

/// A breakpoint table with its events, empty at first.
class BreakpointBoard {
public:
    explicit BreakpointBoard(const wchar_t* pszTableName = kGlobalTable);

    BreakpointBytes Table();
    bool WaitForHit() const { return WaitUntilSignalled(m_hHitEvent); }
    bool IsHit() const { return IsSignalled(m_hHitEvent); }
    /// Frees the hit record and lets its thread go; false when nobody waits for that.
    bool Release(std::size_t hit);

private:
    LOGUTILS::KernelObject m_hHitEvent;
    LOGUTILS::KernelObject m_hMutex;
    LOGUTILS::KernelObject m_hMapping;
    LOGUTILS::View m_table;
};

}  // namespace Mirqos::Test
