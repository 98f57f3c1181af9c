#include "log/dbg/win32/Owned.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "log/dbg/win32/NamedMutex.h"
#include "tests/support/win32/CallSpy.h"

namespace {

using LOGUTILS::MutexHold;
using LOGUTILS::MutexWait;
using LOGUTILS::WindowsCalls;
using Mirqos::Test::CallSpy;

std::vector<int> g_givenBack;

/// Numbers that are given back; -1 is none.
struct NumberKind {
    using Value = int;
    static Value None() { return -1; }
    static void GiveBack(Value nNumber) {
        g_givenBack.push_back(nNumber);
        SetLastError(ERROR_GEN_FAILURE);
    }
};
using Number = LOGUTILS::Owned<NumberKind>;

class Owned : public testing::Test {
protected:
    Owned() { g_givenBack.clear(); }
    ~Owned() override { SetLastError(ERROR_SUCCESS); }
};

TEST_F(Owned, IsGivenBackOnceAtItsEnd) {
    {
        const Number number(0);
        EXPECT_TRUE(number);
        EXPECT_EQ(number.Get(), 0);
    }
    EXPECT_EQ(g_givenBack, std::vector<int>{0});
}

TEST_F(Owned, NoneIsNeverGivenBack) {
    {
        const Number none;
        const Number alsoNone(-1);
        EXPECT_FALSE(none);
        EXPECT_FALSE(alsoNone);
    }
    EXPECT_TRUE(g_givenBack.empty());
}

TEST_F(Owned, MovesToItsNewOwnerWhoseFormerOneIsGivenBack) {
    {
        Number first(1);
        Number second(2);
        second = std::move(first);
        EXPECT_EQ(g_givenBack, std::vector<int>{2});
        EXPECT_EQ(second.Get(), 1);
        const Number third(std::move(second));
        EXPECT_EQ(third.Get(), 1);
        EXPECT_EQ(g_givenBack, std::vector<int>{2});
    }
    EXPECT_EQ(g_givenBack, (std::vector<int>{2, 1}));
}

TEST_F(Owned, StaysWhenItIsMovedToItself) {
    Number number(1);
    Number& same = number;
    number = std::move(same);
    EXPECT_EQ(number.Get(), 1);
    EXPECT_TRUE(g_givenBack.empty());
}

TEST_F(Owned, IsNotGivenBackAfterItsRelease) {
    {
        Number number(1);
        EXPECT_EQ(number.Release(), 1);
        EXPECT_FALSE(number);
    }
    EXPECT_TRUE(g_givenBack.empty());
}

TEST_F(Owned, IsGivenBackByAResetToAnother) {
    Number number(1);
    number.Reset(2);
    EXPECT_EQ(number.Get(), 2);
    number.Reset();
    EXPECT_FALSE(number);
    number.Reset();
    EXPECT_EQ(g_givenBack, (std::vector<int>{1, 2}));
}

TEST_F(Owned, LeavesTheLastErrorAsItWas) {
    SetLastError(ERROR_ACCESS_DENIED);
    { const Number number(1); }
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(g_givenBack, std::vector<int>{1});
}

TEST(MutexHold, GivesBackWhatItOwnsOnceHoweverOftenItMoves) {
    for (const MutexWait wait : {MutexWait::Owned, MutexWait::Abandoned}) {
        const CallSpy<&WindowsCalls::releaseMutex> release([](HANDLE) { return TRUE; });
        {
            MutexHold first(nullptr, wait);
            const MutexHold second(std::move(first));
            EXPECT_TRUE(second.Owns());
            EXPECT_EQ(second.Wait(), wait);
        }
        EXPECT_EQ(release.Calls(), 1);
    }
}

TEST(MutexHold, GivesNothingBackAfterAWaitThatDidNotMakeItOwner) {
    const CallSpy<&WindowsCalls::releaseMutex> release;
    for (const MutexWait wait : {MutexWait::TimedOut, MutexWait::Failed}) {
        const MutexHold hold(nullptr, wait);
        EXPECT_FALSE(hold.Owns());
    }
    EXPECT_EQ(release.Calls(), 0);
}

}  // namespace
