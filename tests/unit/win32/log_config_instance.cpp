#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

#include "log/dbg/win32/CLogConfig.h"
#include "tests/support/win32/CallSpy.h"

namespace Mirqos::Test {
namespace {

using LOGUTILS::WindowsCalls;
using NSDBG::CLogConfig;

TEST(LogConfigInstance, IsMadeOnceWhenThreadsAskForTheFirstTimeTogether) {
    constexpr int kThreads = 8;
    std::atomic<int> asking{0};
    std::atomic<int> firstOf{0};
    // The log root is computed while an instance is made: the first thread in there stays until
    // every other one is on its way, too.
    const CallSpy<&WindowsCalls::getModuleFileName> names(
        [&](HMODULE module, LPWSTR text, DWORD room) {
            if (firstOf++ == 0) {
                while (asking < kThreads) {
                    std::this_thread::yield();
                }
                Sleep(50);  // and gets there
            }
            return GetModuleFileNameW(module, text, room);
        });
    std::vector<const CLogConfig*> found(kThreads);
    std::vector<std::thread> threads;
    for (const CLogConfig*& config : found) {
        threads.emplace_back([&] {
            ++asking;
            config = &CLogConfig::Instance();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::set<const CLogConfig*>(found.begin(), found.end()).size(), 1u);
    const int calls = names.Calls();
    EXPECT_GT(calls, 0);
    CLogConfig::Instance();
    EXPECT_EQ(names.Calls(), calls);
    EXPECT_FALSE(CLogConfig::Instance().LogRoot().empty());
}

}  // namespace
}  // namespace Mirqos::Test
