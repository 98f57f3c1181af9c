#include <aws/core/utils/threading/Semaphore.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <vector>

namespace {

using Aws::Utils::Threading::Semaphore;

TEST(SdkSemaphore, InitialCountLetsThatManyPass) {
    Semaphore semaphore(2, 5);
    semaphore.WaitOne();
    semaphore.WaitOne();
    std::atomic<bool> passed{false};
    std::thread third([&] {
        semaphore.WaitOne();
        passed = true;
    });
    EXPECT_FALSE(passed);
    semaphore.Release();
    third.join();
    EXPECT_TRUE(passed);
}

TEST(SdkSemaphore, ReleaseNeverExceedsTheMaximum) {
    Semaphore semaphore(0, 2);
    for (int i = 0; i < 10; ++i) {
        semaphore.Release();
    }
    semaphore.WaitOne();
    semaphore.WaitOne();
    std::promise<void> atTheGate;
    std::atomic<bool> allowed{false};
    std::atomic<bool> early{false};
    std::thread third([&] {
        atTheGate.set_value();
        semaphore.WaitOne();
        early = !allowed;
    });
    atTheGate.get_future().wait();
    // Yields give a third count, if there were one, every chance to be used before it is allowed.
    for (int i = 0; i < 10000; ++i) {
        std::this_thread::yield();
    }
    allowed = true;
    semaphore.Release();
    third.join();
    EXPECT_FALSE(early);
}

TEST(SdkSemaphore, ReleaseBeforeTheWaitIsNotLost) {
    Semaphore semaphore(0, 1);
    semaphore.Release();
    semaphore.WaitOne();
}

TEST(SdkSemaphore, ReleaseAllLetsEveryWaiterGoOn) {
    constexpr std::size_t kWaiters = 8;
    Semaphore semaphore(0, kWaiters);
    std::vector<std::thread> waiters;
    for (std::size_t i = 0; i < kWaiters; ++i) {
        waiters.emplace_back([&] { semaphore.WaitOne(); });
    }
    semaphore.ReleaseAll();
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
}

TEST(SdkSemaphore, NoWakeUpIsLostBetweenManyThreads) {
    constexpr int kRounds = 20000;
    Semaphore full(0, 4);
    Semaphore empty(4, 4);
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    std::thread producer([&] {
        for (int i = 0; i < kRounds; ++i) {
            empty.WaitOne();
            const int now = ++inside;
            int seen = most;
            while (now > seen && !most.compare_exchange_weak(seen, now)) {
            }
            full.Release();
        }
    });
    std::vector<std::thread> consumers;
    for (int n = 0; n < 2; ++n) {
        consumers.emplace_back([&] {
            for (int i = 0; i < kRounds / 2; ++i) {
                full.WaitOne();
                --inside;
                empty.Release();
            }
        });
    }
    producer.join();
    for (std::thread& consumer : consumers) {
        consumer.join();
    }
    EXPECT_EQ(inside, 0);
    EXPECT_LE(most, 4);
}

}  // namespace
