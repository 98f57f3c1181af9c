#pragma once

#include "log/dbg/WideText.h"

/// The names under which log viewers and the processes they watch meet.
namespace LOGUTILS {

/// Exists as long as a viewer runs.
inline constexpr wchar_t kViewerPresenceName[] =
    L"Global\\EVENT_9CF42DA4-ACD1-4F3F-8D6F-31023974A079";

/// The names of one channel's objects: all processes of one executable share them, whatever the
/// letter case of its file name.
struct ChannelNames {
    explicit ChannelNames(WideView channel);

    WideString m_event;   ///< made by the viewer, set after each record
    WideString m_mutex;   ///< guards the ring
    WideString m_memory;  ///< the ring; in "Global\" or else in "Local\"
};

inline constexpr wchar_t kHitEventName[] = L"Global\\3B66FDF6-4FBE-45F5-8A86-8915C3184D5B_EVENT";
inline constexpr wchar_t kBreakpointMutexName[] =
    L"Global\\3B66FDF6-4FBE-45F5-8A86-8915C3184D5B_MU_BREAKPOINTS";
/// In "Global\" or else in "Local\".
inline constexpr wchar_t kBreakpointMemoryName[] =
    L"3B66FDF6-4FBE-45F5-8A86-8915C3184D5B_SM_BREAKPOINTS";
/// Before the hit's id.
inline constexpr wchar_t kReleaseEventName[] = L"Global\\BPHIT_EVENT_";

}  // namespace LOGUTILS
