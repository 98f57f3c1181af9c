#include <aws/core/utils/threading/Executor.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using Aws::Utils::Threading::DefaultExecutor;
using Aws::Utils::Threading::Executor;

TEST(SdkExecutor, WorkRunsOnAnotherThreadWithItsArguments) {
    DefaultExecutor executor;
    std::promise<std::string> said;
    std::thread::id worker;
    ASSERT_TRUE(executor.Submit(
        [&](const std::string& text, int number) {
            worker = std::this_thread::get_id();
            said.set_value(text + std::to_string(number));
        },
        std::string("n"), 7));
    EXPECT_EQ(said.get_future().get(), "n7");
    EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(SdkExecutor, ArgumentsAreCopied) {
    std::promise<void> gate;
    std::promise<std::string> said;
    DefaultExecutor executor;
    {
        std::string text = "before";
        executor.Submit(
            [&](const std::string& copy) {
                gate.get_future().wait();
                said.set_value(copy);
            },
            text);
        text = "after";
    }
    gate.set_value();
    EXPECT_EQ(said.get_future().get(), "before");
}

TEST(SdkExecutor, EachPieceOfWorkHasItsOwnThread) {
    // All wait for one another, so none may queue behind another.
    constexpr std::size_t kPieces = 8;
    DefaultExecutor executor;
    std::atomic<std::size_t> arrived{0};
    std::promise<void> all;
    std::shared_future<void> everybody = all.get_future().share();
    std::vector<std::promise<std::thread::id>> ids(kPieces);
    for (auto& id : ids) {
        executor.Submit([&, everybody] {
            if (++arrived == kPieces) {
                all.set_value();
            }
            everybody.wait();
            id.set_value(std::this_thread::get_id());
        });
    }
    std::set<std::thread::id> distinct;
    for (auto& id : ids) {
        distinct.insert(id.get_future().get());
    }
    EXPECT_EQ(distinct.size(), kPieces);
}

TEST(SdkExecutor, DestructorWaitsForAllWork) {
    constexpr int kPieces = 50;
    std::atomic<int> done{0};
    std::promise<void> gate;
    std::shared_future<void> open = gate.get_future().share();
    auto executor = std::make_unique<DefaultExecutor>();
    for (int i = 0; i < kPieces; ++i) {
        ASSERT_TRUE(executor->Submit([&done, open] {
            open.wait();
            ++done;
        }));
    }
    EXPECT_EQ(done, 0);
    std::thread opener([&] { gate.set_value(); });
    executor.reset();
    EXPECT_EQ(done, kPieces);
    opener.join();
}

TEST(SdkExecutor, ManyShortPiecesOneAfterAnotherAllRun) {
    std::atomic<int> done{0};
    {
        DefaultExecutor executor;
        for (int i = 0; i < 1000; ++i) {
            ASSERT_TRUE(executor.Submit([&done] { ++done; }));
        }
    }
    EXPECT_EQ(done, 1000);
}

TEST(SdkExecutor, WorkMaySubmitMoreWork) {
    DefaultExecutor executor;
    std::promise<void> inner;
    executor.Submit([&] { executor.Submit([&] { inner.set_value(); }); });
    inner.get_future().wait();
}

TEST(SdkExecutor, WorkMayDestroyItsOwnExecutor) {
    auto executor = std::make_shared<DefaultExecutor>();
    std::promise<void> released;
    std::promise<void> done;
    std::shared_future<void> ended = done.get_future().share();
    Executor& kept = *executor;
    kept.Submit([own = executor, go = released.get_future().share(), &done]() mutable {
        go.wait();
        own.reset();
        done.set_value();
    });
    executor.reset();
    released.set_value();
    ended.wait();
}

}  // namespace
