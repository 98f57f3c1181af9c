#pragma once

#include <atomic>
#include <functional>
#include <utility>

#include "log/dbg/win32/WindowsCalls.h"

namespace Mirqos::Test {

/// Stands in for one of the logging library's calls to Windows for as long as it lives, and counts:
///
///     CallSpy<&WindowsCalls::createMutex> refused([](auto&&...) { return HANDLE{}; });
///
/// answers every call; without an answer of its own it lets Windows answer. At most one for each
/// call; no thread may be inside the call when the spy goes.
template <auto kPlace, typename Place = decltype(kPlace)>
class CallSpy;

template <auto kPlace, typename Result, typename... Arguments>
class CallSpy<kPlace, Result (WINAPI* LOGUTILS::WindowsCalls::*)(Arguments...)> {
public:
    using Answer = std::function<Result(Arguments...)>;

    explicit CallSpy(Answer answer = {}) {
        s_nCalls = 0;
        s_real = std::exchange(LOGUTILS::Windows().*kPlace, &Call);
        s_answer = answer ? std::move(answer) : Answer(s_real);
    }
    ~CallSpy() { LOGUTILS::Windows().*kPlace = s_real; }
    CallSpy(const CallSpy&) = delete;
    CallSpy& operator=(const CallSpy&) = delete;

    /// How many calls there were, the one that is being answered included.
    int Calls() const { return s_nCalls; }
    /// What Windows answers.
    Result Real(Arguments... arguments) const { return s_real(arguments...); }

private:
    static Result WINAPI Call(Arguments... arguments) {
        ++s_nCalls;
        return s_answer(arguments...);
    }

    static inline std::atomic<int> s_nCalls{0};
    static inline Result(WINAPI* s_real)(Arguments...) = nullptr;
    static inline Answer s_answer;
};

}  // namespace Mirqos::Test
