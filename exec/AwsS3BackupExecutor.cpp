#include "exec/AwsS3BackupExecutor.h"

#include <cstddef>
#include <new>
#include <utility>

#include "exec/ExecutorSeam.h"
#include "log/ModuleLog.h"
#include "platform/process.h"

using Aws::Utils::Threading::Semaphore;

namespace {

constexpr std::int32_t kRunTask = 1;
constexpr std::int32_t kStop = 0;

// Null when there is no memory for it.
std::unique_ptr<Semaphore> CreateSemaphore(std::int32_t nInitialCount, std::int32_t nMaximum) {
    return std::unique_ptr<Semaphore>(new (std::nothrow) Semaphore(
        static_cast<std::size_t>(nInitialCount), static_cast<std::size_t>(nMaximum)));
}

int ThreadIdForLog() {
    return static_cast<int>(Mirqos::CurrentThreadId());
}

}  // namespace

AwsS3BackupExecutor::~AwsS3BackupExecutor() {
    ModuleLog(&g_ModuleLog, 1, "Destruct the Backup Executor!");
    for (std::size_t i = 0; i < m_vecThreads.size(); ++i) {
        EnqueueStop();
    }
    for (const auto& pThread : m_vecThreads) {
        pThread->join();
    }
    m_vecThreads.clear();
    m_pFreeSlots.reset();
    m_pTasksReady.reset();
}

std::int32_t AwsS3BackupExecutor::Start(std::int32_t nThreadCount) {
    if (nThreadCount < 0) {
        ModuleLog(&g_ModuleLog, 1, "Upload thread count:[%d] is negative, using 0.", nThreadCount);
        nThreadCount = 0;
    }
    m_pFreeSlots = CreateSemaphore(nThreadCount, nThreadCount);
    if (m_pFreeSlots == nullptr) {
        return -1;
    }
    m_pTasksReady = CreateSemaphore(0, nThreadCount);
    if (m_pTasksReady == nullptr) {
        return -1;
    }
    m_nThreadCount = nThreadCount;
    for (std::int32_t i = 0; i < nThreadCount; ++i) {
        StartWorker();
    }
    return 0;
}

bool AwsS3BackupExecutor::SubmitToThread(std::function<void()>&& task) {
    if (const auto& onSubmission = Mirqos::TheExecutorSeam().onSubmission) {
        onSubmission();
    }
    Enqueue({kRunTask, std::make_unique<std::function<void()>>(std::move(task))});
    return true;
}

void AwsS3BackupExecutor::StartWorker() {
    // Its place in the vector comes first: a running thread that nobody joins would end the
    // process.
    m_vecThreads.push_back(std::make_unique<std::thread>());
    try {
        if (const auto& onThreadCreation = Mirqos::TheExecutorSeam().onThreadCreation) {
            onThreadCreation();
        }
        *m_vecThreads.back() = std::thread(&AwsS3BackupExecutor::RunWorker, this);
    } catch (...) {
        m_vecThreads.pop_back();  // the destructor stops and joins the threads that do run
        throw;
    }
}

void AwsS3BackupExecutor::Enqueue(TaskItem item) {
    m_pFreeSlots->WaitOne();
    std::unique_lock<std::mutex> lock(m_mtxQueue);
    // The SDK does not promise that its semaphore returns only for a release: look for the place.
    while (m_queTasks.size() >= static_cast<std::size_t>(m_nThreadCount)) {
        lock.unlock();
        m_pFreeSlots->WaitOne();
        lock.lock();
    }
    try {
        m_queTasks.push_back(std::move(item));
    } catch (...) {
        lock.unlock();
        m_pFreeSlots->Release();
        throw;
    }
    lock.unlock();
    m_pTasksReady->Release();
}

void AwsS3BackupExecutor::EnqueueStop() noexcept {
    for (;;) {
        try {
            Enqueue({kStop, nullptr});
            return;
        } catch (const std::bad_alloc&) {
            std::this_thread::yield();  // the threads give memory back as they take their tasks
        }
    }
}

AwsS3BackupExecutor::TaskItem AwsS3BackupExecutor::Dequeue() {
    m_pTasksReady->WaitOne();
    std::unique_lock<std::mutex> lock(m_mtxQueue);
    while (m_queTasks.empty()) {  // as in Enqueue
        lock.unlock();
        m_pTasksReady->WaitOne();
        lock.lock();
    }
    TaskItem item = std::move(m_queTasks.front());
    m_queTasks.pop_front();
    lock.unlock();
    m_pFreeSlots->Release();
    return item;
}

void AwsS3BackupExecutor::RunWorker() {
    ModuleLog(&g_ModuleLog, 1, "Upload thread:[%d] is started.", ThreadIdForLog());
    for (;;) {
        const TaskItem item = Dequeue();
        if (item.m_nKind != kRunTask) {
            break;
        }
        (*item.m_pTask)();
    }
    ModuleLog(&g_ModuleLog, 1, "Upload thread:[%d] is existed.", ThreadIdForLog());
}
