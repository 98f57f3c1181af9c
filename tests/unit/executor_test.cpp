#include "exec/AwsS3BackupExecutor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "exec/ExecutorSeam.h"
#include "log/ModuleLog.h"
#include "platform/process.h"
#include "tests/support/Gate.h"
#include "tests/support/LibraryLogRecording.h"

namespace {

// Which of the coming non-throwing allocations fails: 1 is the next one, 0 is none.
std::atomic<int> g_failingAllocation{0};

}  // namespace

// The executor's semaphores are this program's only non-throwing allocations worth failing.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (g_failingAllocation > 0 && --g_failingAllocation == 0) {
        return nullptr;
    }
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace {

using Mirqos::Test::Gate;
using Mirqos::Test::LibraryLogRecording;

class OpenExecutor : public AwsS3BackupExecutor {
public:
    using AwsS3BackupExecutor::SubmitToThread;
};

// Names in the order in which they were added, from any thread.
class Order {
public:
    void Add(const std::string& name) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_names.push_back(name);
    }
    std::vector<std::string> Names() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_names;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_names;
};

// Gives the other threads many chances to do what they must not do; nothing depends on how many.
void LetOthersRun() {
    for (int i = 0; i < 2000; ++i) {
        std::this_thread::yield();
    }
}

// An output that holds each thread at a gate when it writes a line that contains `part`.
class GatingOutput : public IDBGLogOutput {
public:
    GatingOutput(std::string part, Gate gate) : m_part(std::move(part)), m_gate(std::move(gate)) {}
    void Write(int, int, const char* pszMessage) override {
        if (std::string(pszMessage).find(m_part) != std::string::npos) {
            m_gate.Pass();
        }
    }
    void Write(int, int, const wchar_t*) override {}
    int GetLevel() override { return 2; }

private:
    const std::string m_part;
    const Gate m_gate;
};

class ExecutorTest : public testing::Test {
protected:
    std::size_t Count(const std::string& text) const {
        const std::vector<std::string> texts = m_log.Texts();
        return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), text));
    }

    LibraryLogRecording m_log;  // outlives every executor of a test
};

TEST_F(ExecutorTest, TasksRunOnThreadsOfTheExecutor) {
    std::thread::id ranOn;
    {
        OpenExecutor executor;
        EXPECT_EQ(executor.Start(1), 0);
        EXPECT_TRUE(executor.SubmitToThread([&ranOn] { ranOn = std::this_thread::get_id(); }));
    }
    EXPECT_NE(ranOn, std::thread::id());
    EXPECT_NE(ranOn, std::this_thread::get_id());
}

TEST_F(ExecutorTest, TheSdksSubmitHandsOverACallWithItsArguments) {
    std::atomic<int> sum{0};
    {
        AwsS3BackupExecutor executor;
        ASSERT_EQ(executor.Start(2), 0);
        EXPECT_TRUE(executor.Submit([&sum](int a, int b) { sum += a * b; }, 6, 7));
    }
    EXPECT_EQ(sum, 42);
}

TEST_F(ExecutorTest, OneThreadRunsTasksOneAfterAnotherInSubmissionOrder) {
    Order order;
    {
        OpenExecutor executor;
        ASSERT_EQ(executor.Start(1), 0);
        for (int i = 0; i < 50; ++i) {
            executor.SubmitToThread([&order, i] {
                order.Add("begin " + std::to_string(i));
                order.Add("end " + std::to_string(i));
            });
        }
    }
    std::vector<std::string> expected;
    for (int i = 0; i < 50; ++i) {
        expected.push_back("begin " + std::to_string(i));
        expected.push_back("end " + std::to_string(i));
    }
    EXPECT_EQ(order.Names(), expected);
}

TEST_F(ExecutorTest, WithOneThreadASecondSubmissionReturnsOnlyOnceTheFirstWasTaken) {
    for (int round = 0; round < 20; ++round) {
        const Gate start;
        g_ModuleLog.m_pSMOutput = std::make_unique<GatingOutput>("is started", start);
        Order order;
        OpenExecutor executor;
        ASSERT_EQ(executor.Start(1), 0);
        ASSERT_TRUE(start.WaitUntilReached());  // the worker has not come to the queue yet
        executor.SubmitToThread([] {});
        std::thread submitter([&] {
            executor.SubmitToThread([] {});
            order.Add("second submitted");
        });
        LetOthersRun();
        order.Add("worker let go");
        start.Open();
        submitter.join();
        ASSERT_EQ(order.Names(), (std::vector<std::string>{"worker let go", "second submitted"}));
    }
    g_ModuleLog.m_pSMOutput.reset();
}

TEST_F(ExecutorTest, NTasksWaitBehindNRunningAndTheNextSubmissionBlocks) {
    constexpr int kThreads = 3;
    const Gate gate;
    Order order;
    std::atomic<int> ran{0};
    {
        OpenExecutor executor;
        ASSERT_EQ(executor.Start(kThreads), 0);
        for (int i = 0; i < 2 * kThreads; ++i) {  // none of these blocks for ever
            executor.SubmitToThread([&] {
                gate.Pass();
                ++ran;
            });
        }
        ASSERT_TRUE(gate.WaitUntilReached(kThreads));
        std::thread submitter([&] {
            executor.SubmitToThread([&ran] { ++ran; });
            order.Add("submitted");
        });
        LetOthersRun();
        EXPECT_EQ(gate.Reached(), kThreads) << "no more than the threads run";
        order.Add("one let go");
        gate.Allow();
        submitter.join();  // one free place is enough for it
        EXPECT_EQ(order.Names(), (std::vector<std::string>{"one let go", "submitted"}));
        gate.Open();
    }
    EXPECT_EQ(ran, 2 * kThreads + 1);
}

TEST_F(ExecutorTest, TheTaskThatWaitsLongestIsTakenFirst) {
    const Gate running;
    const Gate third;
    Order order;
    {
        OpenExecutor executor;
        ASSERT_EQ(executor.Start(2), 0);
        executor.SubmitToThread([&] { running.Pass(); });
        executor.SubmitToThread([&] { running.Pass(); });
        ASSERT_TRUE(running.WaitUntilReached(2));
        executor.SubmitToThread([&] {
            order.Add("third");
            third.Pass();
        });
        executor.SubmitToThread([&] { order.Add("fourth"); });
        running.Allow();  // one of the two threads goes on, and takes the third task
        ASSERT_TRUE(third.WaitUntilReached());
        EXPECT_EQ(order.Names(), std::vector<std::string>{"third"});
        running.Open();
        third.Open();
    }
    EXPECT_EQ(order.Names(), (std::vector<std::string>{"third", "fourth"}));
}

TEST_F(ExecutorTest, DestructionRunsEveryQueuedTask) {
    constexpr int kThreads = 2;
    const Gate gate;
    std::atomic<int> ran{0};
    auto executor = std::make_unique<OpenExecutor>();
    ASSERT_EQ(executor->Start(kThreads), 0);
    for (int i = 0; i < 2 * kThreads; ++i) {
        executor->SubmitToThread([&] {
            gate.Pass();
            ++ran;
        });
    }
    ASSERT_TRUE(gate.WaitUntilReached(kThreads));
    std::atomic<bool> destroyed{false};
    std::thread destroyer([&] {
        executor.reset();
        destroyed = true;
    });
    LetOthersRun();
    EXPECT_FALSE(destroyed) << "the threads still run tasks";
    gate.Open();
    destroyer.join();
    EXPECT_EQ(ran, 2 * kThreads);
}

TEST_F(ExecutorTest, ATaskIsFreedBeforeTheNextOneStarts) {
    Order order;
    {
        OpenExecutor executor;
        ASSERT_EQ(executor.Start(1), 0);
        std::shared_ptr<int> held(new int(0), [&order](int* number) {
            delete number;
            order.Add("first freed");
        });
        executor.SubmitToThread([held = std::move(held), &order] { order.Add("first runs"); });
        executor.SubmitToThread([&order] { order.Add("second runs"); });
    }
    EXPECT_EQ(order.Names(),
              (std::vector<std::string>{"first runs", "first freed", "second runs"}));
}

std::string StartLine(std::uint32_t thread) {
    return "Upload thread:[" + std::to_string(thread) + "] is started.";
}

std::string EndLine(std::uint32_t thread) {
    return "Upload thread:[" + std::to_string(thread) + "] is existed.";
}

TEST_F(ExecutorTest, EachThreadLogsItsStartOnceAndItsEndOnceAfterItsLastTask) {
    constexpr int kThreads = 4;
    const Gate gate;
    std::mutex mutex;
    std::set<std::uint32_t> threads;
    {
        OpenExecutor executor;
        ASSERT_EQ(executor.Start(kThreads), 0);
        for (int i = 0; i < 2 * kThreads; ++i) {
            executor.SubmitToThread([&] {
                const std::uint32_t thread = Mirqos::CurrentThreadId();
                {
                    const std::lock_guard<std::mutex> lock(mutex);
                    threads.insert(thread);
                }
                gate.Pass();  // holds the first tasks, so that each thread gets one
                ModuleLog(&g_ModuleLog, 1, "task on %d", static_cast<int>(thread));
            });
        }
        ASSERT_TRUE(gate.WaitUntilReached(kThreads));
        gate.Open();
    }
    ASSERT_EQ(threads.size(), static_cast<std::size_t>(kThreads));
    const std::vector<std::string> texts = m_log.Texts();
    const auto first = [&texts](const std::string& text) {
        return std::find(texts.begin(), texts.end(), text) - texts.begin();
    };
    EXPECT_EQ(Count("Destruct the Backup Executor!"), 1u);
    for (const std::uint32_t thread : threads) {
        EXPECT_EQ(Count(StartLine(thread)), 1u);
        EXPECT_EQ(Count(EndLine(thread)), 1u);
        const std::string task = "task on " + std::to_string(thread);
        const auto lastTask = std::find(texts.rbegin(), texts.rend(), task);
        ASSERT_NE(lastTask, texts.rend());
        const auto lastTaskAt = lastTask.base() - texts.begin() - 1;
        EXPECT_LT(first(StartLine(thread)), first(task));
        EXPECT_GT(first(EndLine(thread)), lastTaskAt);
        EXPECT_GT(first(EndLine(thread)), first("Destruct the Backup Executor!"));
    }
    EXPECT_EQ(m_log.CountContaining("Upload thread:["), 2u * kThreads);
    for (const auto& line : m_log.File().Lines()) {
        EXPECT_EQ(line.level, 1) << line.text;
    }
}

TEST_F(ExecutorTest, StartWithZeroCreatesNoThread) {
    {
        AwsS3BackupExecutor executor;
        EXPECT_EQ(executor.Start(0), 0);
    }
    EXPECT_EQ(m_log.Texts(), std::vector<std::string>{"Destruct the Backup Executor!"});
}

TEST_F(ExecutorTest, ANegativeCountCountsAsZeroAndIsLogged) {
    for (const std::int32_t count : {-1, INT32_MIN}) {
        m_log.Clear();
        {
            AwsS3BackupExecutor executor;
            EXPECT_EQ(executor.Start(count), 0);
        }
        EXPECT_EQ(m_log.Texts(),
                  (std::vector<std::string>{
                      "Upload thread count:[" + std::to_string(count) + "] is negative, using 0.",
                      "Destruct the Backup Executor!"}));
    }
}

TEST_F(ExecutorTest, AnExecutorThatWasNeverStartedCanBeDestroyed) {
    { AwsS3BackupExecutor executor; }
    EXPECT_EQ(m_log.Texts(), std::vector<std::string>{"Destruct the Backup Executor!"});
}

TEST_F(ExecutorTest, StartFailsWithoutThreadsWhenASemaphoreCannotBeCreated) {
    for (const int failing : {1, 2}) {
        m_log.Clear();
        {
            AwsS3BackupExecutor executor;
            g_failingAllocation = failing;
            EXPECT_EQ(executor.Start(3), -1);
            EXPECT_EQ(g_failingAllocation, 0) << "the allocation that had to fail was not made";
            g_failingAllocation = 0;
        }
        EXPECT_EQ(m_log.Texts(), std::vector<std::string>{"Destruct the Backup Executor!"});
    }
}

class RefusedThreadTest : public ExecutorTest {
protected:
    ~RefusedThreadTest() override { Mirqos::TheExecutorSeam() = {}; }

    // The system grants this many threads and refuses the next.
    static void Grant(int threads) {
        Mirqos::TheExecutorSeam().onThreadCreation = [threads, created = 0]() mutable {
            if (created++ == threads) {
                throw std::system_error(
                    std::make_error_code(std::errc::resource_unavailable_try_again));
            }
        };
    }
};

TEST_F(RefusedThreadTest, StartThrowsTheStandardErrorAndTheThreadsThatRunAreStopped) {
    for (const int granted : {0, 1, 2}) {
        m_log.Clear();
        Grant(granted);
        {
            AwsS3BackupExecutor executor;
            try {
                executor.Start(3);
                ADD_FAILURE() << "nothing was thrown";
            } catch (const std::system_error& error) {
                EXPECT_EQ(error.code(), std::errc::resource_unavailable_try_again);
            }
        }
        EXPECT_EQ(m_log.CountContaining("is started."), static_cast<std::size_t>(granted));
        EXPECT_EQ(m_log.CountContaining("is existed."), static_cast<std::size_t>(granted));
    }
}

// --- What ends the process

class ExecutorDeathTest : public testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    static void RunOnAnExecutor(std::function<void()> task) {
        OpenExecutor executor;
        executor.Start(1);
        executor.SubmitToThread(std::move(task));
    }
};

TEST_F(ExecutorDeathTest, AnExceptionOfATaskIsNotCaught) {
    EXPECT_DEATH(RunOnAnExecutor([] { throw std::runtime_error("task failed"); }), "task failed");
}

TEST_F(ExecutorDeathTest, AnEmptyTaskRaisesTheStandardError) {
    EXPECT_DEATH(RunOnAnExecutor({}), "bad_function_call");
}

}  // namespace
