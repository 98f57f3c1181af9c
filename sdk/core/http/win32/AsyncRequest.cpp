#include "sdk/core/http/win32/AsyncRequest.h"

#include <algorithm>
#include <utility>

namespace Mirqos::Http {
namespace {

constexpr DWORD kNotifications =
    WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES |
    WINHTTP_CALLBACK_FLAG_SECURE_FAILURE | WINHTTP_CALLBACK_FLAG_CONNECT_TO_SERVER |
    WINHTTP_CALLBACK_FLAG_SEND_REQUEST | WINHTTP_CALLBACK_FLAG_RECEIVE_RESPONSE;

class SrwLock {
public:
    explicit SrwLock(SRWLOCK& lock) : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
    ~SrwLock() { ReleaseSRWLockExclusive(&m_lock); }
    SrwLock(const SrwLock&) = delete;
    SrwLock& operator=(const SrwLock&) = delete;

private:
    SRWLOCK& m_lock;
};

}  // namespace

DWORD ErrorOf(BOOL succeeded) {
    const DWORD error = succeeded ? ERROR_SUCCESS : GetLastError();
    return succeeded || error != ERROR_SUCCESS ? error : ERROR_WINHTTP_INTERNAL_ERROR;
}

/// Shared by the waiting thread and WinHTTP's; WinHTTP's share ends with the handle.
struct AsyncRequest::State {
    SRWLOCK lock = SRWLOCK_INIT;
    CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;

    bool finished = false;  ///< of the step under way, as are error and moved
    DWORD error = ERROR_SUCCESS;
    DWORD moved = 0;
    Clock::time_point begun;
    std::chrono::milliseconds limit{0};
    std::chrono::milliseconds connectLimit{0};
    Clock::time_point deadline;

    bool made = false;
    bool connected = false;
    bool received = false;
    bool sawClose = false;
    DWORD secureFlags = 0;
    Clock::time_point lastMove;

    const std::unique_ptr<char[]> buffer{new char[kBufferSize]};
};

bool AsyncRequest::Listen(HINTERNET session) {
    return WinHttpSetStatusCallback(session, &AsyncRequest::OnStatus, kNotifications, 0) !=
           WINHTTP_INVALID_STATUS_CALLBACK;
}

AsyncRequest::AsyncRequest(InternetHandle request)
    : m_state(std::make_shared<State>()), m_handle(std::move(request)) {
    auto share = std::make_unique<std::shared_ptr<State>>(m_state);
    DWORD_PTR context = reinterpret_cast<DWORD_PTR>(share.get());
    m_state->error = ErrorOf(
        WinHttpSetOption(m_handle.get(), WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof(context)));
    if (m_state->error == ERROR_SUCCESS) {
        static_cast<void>(share.release());  // OnStatus frees it when the handle closes
    } else {
        m_handle.reset();
    }
}

AsyncRequest::~AsyncRequest() = default;

char* AsyncRequest::Buffer() const {
    return m_state->buffer.get();
}

void CALLBACK AsyncRequest::OnStatus(HINTERNET, DWORD_PTR context, DWORD status, void* info,
                                     DWORD size) {
    auto* const share = reinterpret_cast<std::shared_ptr<State>*>(context);
    if (share == nullptr) {
        return;  // a session's or connection's own handle
    }
    if (status == WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING) {
        delete share;
        return;
    }
    State& state = **share;
    const SrwLock lock(state.lock);
    switch (status) {
        case WINHTTP_CALLBACK_STATUS_CONNECTING_TO_SERVER:
            state.made = true;
            return;
        case WINHTTP_CALLBACK_STATUS_SENDING_REQUEST:
            state.connected = true;
            state.lastMove = Clock::now();
            break;
        case WINHTTP_CALLBACK_STATUS_RESPONSE_RECEIVED:
            if (info != nullptr && size == sizeof(int)) {
                // 0 is the server's close; some systems report a reset here too, as -1
                const bool any = *static_cast<const int*>(info) > 0;
                (any ? state.received : state.sawClose) = true;
            }
            state.lastMove = Clock::now();
            return;
        case WINHTTP_CALLBACK_STATUS_SECURE_FAILURE:
            if (info != nullptr && size == sizeof(DWORD)) {
                state.secureFlags |= *static_cast<const DWORD*>(info);
            }
            return;
        case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
            state.moved = size;
            state.finished = true;
            break;
        case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
        case WINHTTP_CALLBACK_STATUS_WRITE_COMPLETE:
        case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
            state.finished = true;
            break;
        case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
            state.error = static_cast<const WINHTTP_ASYNC_RESULT*>(info)->dwError;
            state.finished = true;
            break;
        default:
            return;
    }
    WakeConditionVariable(&state.changed);
}

void AsyncRequest::Begin() {
    const SrwLock lock(m_state->lock);
    m_state->finished = false;
    m_state->error = ERROR_SUCCESS;
    m_state->moved = 0;
    m_state->begun = Clock::now();
    m_state->lastMove = m_state->begun;
}

AsyncRequest::Outcome AsyncRequest::Finish(BOOL started,
                                           Clock::time_point (*deadline)(const State&)) {
    const DWORD error = ErrorOf(started);
    State& state = *m_state;
    bool late = false;
    {
        const SrwLock lock(state.lock);
        if (!started && error != ERROR_IO_PENDING) {
            state.error = error;
            state.finished = true;
        }
        while (!state.finished && !late) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline(state) - Clock::now());
            if (left.count() <= 0) {
                late = true;
            } else {
                SleepConditionVariableSRW(
                    &state.changed, &state.lock,
                    static_cast<DWORD>(std::min<std::int64_t>(left.count(), 60'000)), 0);
            }
        }
        if (!late) {
            return state.error == ERROR_SUCCESS ? Outcome::done : Outcome::failed;
        }
    }
    m_handle.reset();  // outside the lock: the call may report to OnStatus at once
    return Outcome::late;
}

AsyncRequest::Outcome AsyncRequest::Send(std::chrono::milliseconds connect,
                                         std::chrono::milliseconds stall) {
    Begin();
    m_state->connectLimit = connect;
    m_state->limit = stall;
    return Finish(
        WinHttpSendRequest(m_handle.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0,
                           WINHTTP_NO_REQUEST_DATA, 0, WINHTTP_IGNORE_REQUEST_TOTAL_LENGTH, 0),
        [](const State& state) {
            return state.connected ? state.lastMove + state.limit
                                   : state.begun + state.connectLimit;
        });
}

AsyncRequest::Outcome AsyncRequest::Write(std::size_t size, std::chrono::milliseconds stall) {
    Begin();
    m_state->limit = stall;
    return Finish(WinHttpWriteData(m_handle.get(), Buffer(), static_cast<DWORD>(size), nullptr),
                  [](const State& state) { return state.begun + state.limit; });
}

AsyncRequest::Outcome AsyncRequest::Receive(Clock::time_point deadline) {
    Begin();
    m_state->deadline = deadline;
    return Finish(WinHttpReceiveResponse(m_handle.get(), nullptr),
                  [](const State& state) { return state.deadline; });
}

AsyncRequest::Outcome AsyncRequest::Read(std::size_t& size, std::chrono::milliseconds stall) {
    Begin();
    m_state->limit = stall;
    const Outcome outcome = Finish(WinHttpReadData(m_handle.get(), Buffer(), kBufferSize, nullptr),
                                   [](const State& state) { return state.lastMove + state.limit; });
    const SrwLock lock(m_state->lock);
    size = outcome == Outcome::done ? m_state->moved : 0;
    return outcome;
}

DWORD AsyncRequest::Error() const {
    const SrwLock lock(m_state->lock);
    return m_state->error;
}

DWORD AsyncRequest::SecureFlags() const {
    const SrwLock lock(m_state->lock);
    return m_state->secureFlags;
}

bool AsyncRequest::MadeConnection() const {
    const SrwLock lock(m_state->lock);
    return m_state->made;
}

bool AsyncRequest::Connected() const {
    const SrwLock lock(m_state->lock);
    return m_state->connected;
}

bool AsyncRequest::HasReceived() const {
    const SrwLock lock(m_state->lock);
    return m_state->received;
}

bool AsyncRequest::SawClose() const {
    const SrwLock lock(m_state->lock);
    return m_state->sawClose;
}

}  // namespace Mirqos::Http
