#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace Aws::Utils::Threading {

/// Runs work on other threads.
class Executor {
public:
    virtual ~Executor() = default;

    /// Runs `fn` with copies of `args`, some time, on some thread. False: it will not run. What it
    /// throws ends the process.
    template <typename Fn, typename... Args>
    bool Submit(Fn&& fn, Args&&... args) {
        std::function<void()> callable{
            std::bind(std::forward<Fn>(fn), std::forward<Args>(args)...)};
        return SubmitToThread(std::move(callable));
    }

protected:
    /// Thread-safe. False: the work was not taken.
    virtual bool SubmitToThread(std::function<void()>&& work) = 0;
};

/// A thread of its own for each piece of work.
class DefaultExecutor : public Executor {
public:
    DefaultExecutor();
    DefaultExecutor(const DefaultExecutor&) = delete;
    DefaultExecutor& operator=(const DefaultExecutor&) = delete;
    /// Waits for all work to end. A piece of work may destroy the executor that runs it; only its
    /// own end is then not waited for.
    ~DefaultExecutor() override;

protected:
    /// False where the system has no further thread.
    bool SubmitToThread(std::function<void()>&& work) override;

private:
    class Threads;
    std::shared_ptr<Threads> m_threads;
};

}  // namespace Aws::Utils::Threading
