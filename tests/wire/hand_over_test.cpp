// Parts and reads that are counted and then never get to the executor's threads: each is a failure
// that its finish or wait reports, and no wait lasts for ever.

#include <algorithm>
#include <atomic>
#include <new>
#include <set>
#include <thread>

#include "exec/ExecutorSeam.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/Gate.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/AsyncReadTest.h"
#include "tests/wire/AsyncUploadTest.h"

namespace Mirqos::Test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr std::int32_t kOutOfMemory = 14;
/// Of parts, reads and nothing else here.
constexpr std::size_t kOddSize = 77777;

/// Lets the submissions with these numbers, counted from 1, fail.
class FailingSubmissions {
public:
    explicit FailingSubmissions(std::set<int> failing) : m_failing(std::move(failing)) {
        TheExecutorSeam().onSubmission = [this] {
            if (m_failing.count(++m_submissions) != 0) {
                throw std::bad_alloc();
            }
        };
    }
    ~FailingSubmissions() { TheExecutorSeam().onSubmission = nullptr; }
    FailingSubmissions(const FailingSubmissions&) = delete;
    FailingSubmissions& operator=(const FailingSubmissions&) = delete;

private:
    const std::set<int> m_failing;
    std::atomic<int> m_submissions{0};
};

class UploadHandOver : public AsyncUpload {
protected:
    static std::string NotHandedOver(int number) {
        return "AwsS3Store::DoMultiPartUploadAsync part [" + std::to_string(number) +
               "] was not handed over: [";
    }
    /// Three parts, of which some were not handed over: the others are sent, nothing is completed.
    void ExpectLost(AwsS3Store& store, const std::string& upload, const std::set<int>& lost) {
        EXPECT_EQ(Finish(store, 3, upload), kOutOfMemory);
        EXPECT_THAT(Completions(), IsEmpty());
        for (int number = 1; number <= 3; ++number) {
            EXPECT_THAT(Sent(number, upload), SizeIs(1 - lost.count(number)));
            EXPECT_EQ(m_log.CountContaining(NotHandedOver(number)), lost.count(number));
        }
        EXPECT_EQ(StoreTestAccess::Upload(store, upload.c_str()), nullptr);
        m_log.Clear();
    }
};

const std::set<int> kLostOnes[] = {{1}, {2}, {3}, {1, 3}, {1, 2, 3}};

TEST_F(UploadHandOver, PartsThatTheExecutorDoesNotTakeAreFailedParts) {
    const auto store = StoreWithThreads(2);
    m_server.On("PUT", "/the-bucket/k").Always(Tagged("e"));
    int round = 0;
    for (const std::set<int>& lost : kLostOnes) {
        const std::string upload = "u" + std::to_string(++round);
        Open(*store, upload);
        const FailingSubmissions failing(lost);
        for (int number = 1; number <= 3; ++number) {
            EXPECT_EQ(Submit(*store, number, "x", number == 3, upload), 0);
        }
        ExpectLost(*store, upload, lost);
    }
}

TEST_F(UploadHandOver, PartsWithoutMemoryForTheirBytesAreFailedParts) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK's memory does not come from operator new";
    }
    const auto store = StoreWithThreads(2);
    m_server.On("PUT", "/the-bucket/k").Always(Tagged("e"));
    const std::string odd(kOddSize, 'x');
    int round = 0;
    for (const std::set<int>& lost : kLostOnes) {
        const std::string upload = "u" + std::to_string(++round);
        Open(*store, upload);
        for (int number = 1; number <= 3; ++number) {
            if (lost.count(number) != 0) {
                const FailingAllocation failing(kOddSize);
                EXPECT_EQ(Submit(*store, number, odd, number == 3, upload), 0);
            } else {
                EXPECT_EQ(Submit(*store, number, "x", number == 3, upload), 0);
            }
        }
        ExpectLost(*store, upload, lost);
    }
}

TEST_F(UploadHandOver, APartLostWhileTheFinishWaitsWakesIt) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    Gate gate;
    TheExecutorSeam().onSubmission = [&] {
        gate.Pass();
        throw std::bad_alloc();
    };
    std::thread submitter([&] { EXPECT_EQ(Submit(*store, 1, "x", false), 0); });
    ASSERT_TRUE(gate.WaitUntilReached());
    const auto state = StoreTestAccess::Upload(*store, "u1");
    std::int32_t result = -2;
    std::thread host([&] { result = Finish(*store, 1); });
    // The finish marks the last part under the lock that only its wait gives up.
    while (!state->m_bLastPartSubmitted) {
        std::this_thread::yield();
    }
    gate.Open();
    host.join();
    submitter.join();
    TheExecutorSeam().onSubmission = nullptr;
    EXPECT_EQ(result, kOutOfMemory);
}

TEST_F(UploadHandOver, ALostPartThatIsSubmittedAgainDoesNotMakeUpForTheFailure) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    Part(1, Tagged("e"));
    {
        const FailingSubmissions failing({1});
        EXPECT_EQ(Submit(*store, 1, "x", false), 0);
        EXPECT_EQ(Submit(*store, 1, "x", true), 0);
    }
    EXPECT_EQ(Finish(*store, 1), kOutOfMemory);
    EXPECT_THAT(Completions(), IsEmpty());
}

class ReadHandOver : public AsyncRead {
protected:
    std::int32_t ReadThree(AwsS3Store& store, const std::set<int>& lost) {
        const FailingSubmissions failing(lost);
        m_reads.clear();
        for (std::uint64_t number = 0; number < 3; ++number) {
            m_reads.emplace_back(number * 5, 5);
        }
        for (OneRead& read : m_reads) {
            EXPECT_EQ(store.ReadObjectAsync(&read.context), 0);
        }
        return store.WaitForReadObjectAsync(&m_reads[0].context);
    }
    std::vector<OneRead> m_reads;
};

TEST_F(ReadHandOver, ReadsThatTheExecutorDoesNotTakeAreTheResultOfTheWait) {
    ServeDigits();
    const auto store = StoreWithThreads(2);
    for (const std::set<int>& lost : kLostOnes) {
        m_log.Clear();
        EXPECT_EQ(ReadThree(*store, lost), kOutOfMemory);
        EXPECT_EQ(
            m_log.CountContaining("AwsS3Store::ReadObjectAsync the read was not handed over: ["),
            lost.size());
        for (const int number : lost) {
            EXPECT_TRUE(m_reads[static_cast<std::size_t>(number - 1)].Untouched());
        }
    }
    EXPECT_EQ(ReadThree(*store, {}), 0) << "the next batch starts clean";
    EXPECT_TRUE(std::all_of(m_reads.begin(), m_reads.end(),
                            [](const OneRead& read) { return read.Delivered(); }));
}

TEST_F(ReadHandOver, AReadWithoutMemoryForItsAnswerIsAFailedRead) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK's memory does not come from operator new";
    }
    m_server.On("GET", "/the-bucket/k").Always(Bytes("01234"));
    const auto store = StoreWithThreads(1);
    OneRead read(0, kOddSize);
    {
        const FailingAllocation failing(kOddSize);
        EXPECT_EQ(store->ReadObjectAsync(&read.context), 0);
        EXPECT_EQ(store->WaitForReadObjectAsync(&read.context),
                  StatusOf(Aws::S3::S3Errors::INTERNAL_FAILURE));
    }
    EXPECT_TRUE(read.Untouched());
    OneRead again(0, 5);
    EXPECT_EQ(store->ReadObjectAsync(&again.context), 0);
    EXPECT_EQ(store->WaitForReadObjectAsync(&again.context), 0);
    EXPECT_TRUE(again.Delivered());
}

}  // namespace
}  // namespace Mirqos::Test
