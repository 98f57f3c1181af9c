#pragma once

#include <aws/core/utils/threading/Executor.h>
#include <aws/core/utils/threading/Semaphore.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// The threads on which the S3 client runs its asynchronous calls. With n threads at most n tasks
/// wait in the queue; a further submission blocks its caller until a thread takes one, so whoever
/// issues requests cannot run ahead of the network without bound. Tasks start in the order of their
/// submission.
///
/// Any thread may submit. A task must not throw: nothing catches it, and the process ends. A task
/// must not submit to its own executor either, or all threads may end up waiting for a free place.
class AwsS3BackupExecutor : public Aws::Utils::Threading::Executor {
public:
    AwsS3BackupExecutor() = default;

    /// Lets the threads run every task submitted before, then joins them. Must not run on one of
    /// its own threads.
    ~AwsS3BackupExecutor() override;

    AwsS3BackupExecutor(const AwsS3BackupExecutor&) = delete;
    AwsS3BackupExecutor& operator=(const AwsS3BackupExecutor&) = delete;

    /// Starts `nThreadCount` threads; call it once, before the first submission. A negative count
    /// counts as 0. With 0 there are no threads, and a submission waits for ever.
    ///
    /// Returns 0, or -1 without any thread when the queue's semaphores cannot be created. Throws
    /// std::system_error when the system refuses a thread; the executor may then only be destroyed.
    std::int32_t Start(std::int32_t nThreadCount);

protected:
    /// Always true. Blocks while the queue is full.
    bool SubmitToThread(std::function<void()>&& task) override;

private:
    struct TaskItem {
        std::int32_t m_nKind;
        std::unique_ptr<std::function<void()>> m_pTask;
    };

    void StartWorker();
    void Enqueue(TaskItem item);
    /// Tries until there is memory for it: a destructor cannot do without.
    void EnqueueStop() noexcept;
    TaskItem Dequeue();
    void RunWorker();

    std::deque<TaskItem> m_queTasks;
    std::int32_t m_nThreadCount = 0;
    std::unique_ptr<Aws::Utils::Threading::Semaphore> m_pFreeSlots;
    std::unique_ptr<Aws::Utils::Threading::Semaphore> m_pTasksReady;
    std::mutex m_mtxQueue;
    std::vector<std::unique_ptr<std::thread>> m_vecThreads;
};
