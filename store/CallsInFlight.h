#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace Mirqos {

/// Counts the asynchronous calls of a store that have not ended. As long as there is one, a handler
/// that uses the store may run. Handlers share its ownership: the last of them may still be inside
/// End when the store goes.
class CallsInFlight {
public:
    void Begin();
    /// The last thing that a handler does, or the caller whose call was not handed over.
    void End();
    void WaitForAll();

private:
    std::mutex m_mutex;
    std::condition_variable m_cvNone;
    uint64_t m_nCalls = 0;
};

}  // namespace Mirqos
