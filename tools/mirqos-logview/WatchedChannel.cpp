#include "tools/mirqos-logview/WatchedChannel.h"

#include "log/dbg/LogRing.h"
#include "log/dbg/win32/NamedEvent.h"
#include "log/dbg/win32/ViewerNames.h"
#include "tools/mirqos-logview/Failure.h"

namespace Mirqos::LogView {

WatchedChannel::WatchedChannel(const LOGUTILS::WideString& executable)
    : m_executable(executable),
      m_event(LOGUTILS::CreateNamedEvent(LOGUTILS::ChannelNames(executable).m_event.c_str())),
      m_memory(executable) {
    Require(static_cast<bool>(m_event), "the event of a channel");
}

NewMessages WatchedChannel::Read() {
    NewMessages found;
    if (!m_memory.IsOpen()) {
        m_memory.Open();
    }
    if (m_memory.Read(found.messages) == 0) {
        return found;
    }
    constexpr auto kRing = static_cast<std::size_t>(LOGUTILS::kRingRecords);
    const std::size_t count = found.messages.size();
    if (count > kRing) {
        // those before the newest 1,024 stand for records that are gone
        found.lost = count - kRing;
        found.lostMore = count == static_cast<std::size_t>(LOGUTILS::kMostNewRecords);
        found.messages.erase(found.messages.begin(),
                             found.messages.end() - static_cast<std::ptrdiff_t>(kRing));
    }
    return found;
}

}  // namespace Mirqos::LogView
