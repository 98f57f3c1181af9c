#include <aws/core/utils/threading/Executor.h>

#include <list>
#include <mutex>
#include <system_error>
#include <thread>

namespace Aws::Utils::Threading {

/// The threads of one executor. They share it, because a piece of work may outlive the executor
/// that it destroys.
class DefaultExecutor::Threads : public std::enable_shared_from_this<Threads> {
public:
    void Run(std::function<void()>&& work) {
        JoinEnded();
        // Held until the thread stands in the list, so that it finds itself there at its end.
        const std::lock_guard lock(m_mutex);
        const auto place = m_running.emplace(m_running.end());
        try {
            *place = std::thread([self = shared_from_this(), place, work = std::move(work)] {
                work();
                self->End(place);
            });
        } catch (...) {
            m_running.erase(place);
            throw;
        }
    }

    void WaitForAll() {
        std::list<std::thread> all;
        {
            const std::lock_guard lock(m_mutex);
            m_closed = true;
            all.splice(all.end(), m_running);
            all.splice(all.end(), m_ended);
        }
        Join(all);
    }

private:
    /// A thread cannot join itself, so it leaves that to the next submission or to the destructor.
    void End(std::list<std::thread>::iterator place) {
        const std::lock_guard lock(m_mutex);
        if (!m_closed) {
            m_ended.splice(m_ended.end(), m_running, place);
        }
    }

    void JoinEnded() {
        std::list<std::thread> ended;
        {
            const std::lock_guard lock(m_mutex);
            ended.swap(m_ended);
        }
        Join(ended);
    }

    static void Join(std::list<std::thread>& threads) {
        for (std::thread& thread : threads) {
            if (thread.get_id() == std::this_thread::get_id()) {
                thread.detach();
            } else {
                thread.join();
            }
        }
    }

    std::mutex m_mutex;
    std::list<std::thread> m_running;
    std::list<std::thread> m_ended;
    bool m_closed = false;
};

DefaultExecutor::DefaultExecutor() : m_threads(std::make_shared<Threads>()) {
}

DefaultExecutor::~DefaultExecutor() {
    m_threads->WaitForAll();
}

bool DefaultExecutor::SubmitToThread(std::function<void()>&& work) {
    try {
        m_threads->Run(std::move(work));
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

}  // namespace Aws::Utils::Threading
