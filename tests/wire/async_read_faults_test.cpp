#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

#include "tests/support/Gate.h"
#include "tests/wire/AsyncReadTest.h"

namespace Mirqos::Test {
namespace {

using testing::SizeIs;

/// What the network does to a batch of reads that have all been started and of which none has been
/// answered: as many are on their way as a client opens connections, the others wait for one.
class AsyncReadFaults : public AsyncRead {
protected:
    static constexpr std::uint64_t kReads = 64;
    static constexpr int kConnections = 25;
    static constexpr std::uint64_t kLength = 1000;

    static std::string KeyOf(std::uint64_t number) { return "k" + std::to_string(number) + "-"; }
    static std::string TargetOf(std::uint64_t number) { return "/the-bucket/" + KeyOf(number); }
    static Answer AnswerTo(std::uint64_t number) {
        return Bytes(Digits(number * 7, kLength), number * 7);
    }

    void ServeTheRest(ScriptedServer& server) {
        for (std::uint64_t number = 0; number < kReads; ++number) {
            server.On("GET", TargetOf(number))
                .Always(AnswerTo(number).Wait(Place::AnswerByte(0), m_answer));
        }
    }
    void StartAll(MIRQOSInterface& store) {
        m_keys.reserve(kReads);
        m_reads.reserve(kReads);
        for (std::uint64_t number = 0; number < kReads; ++number) {
            m_keys.push_back(KeyOf(number));
            m_reads.emplace_back(number * 7, kLength, m_keys.back().c_str());
            ASSERT_EQ(store.ReadObjectAsync(&m_reads.back().context), 0);
        }
    }
    std::int32_t Wait(MIRQOSInterface& store) {
        return store.WaitForReadObjectAsync(&m_reads[0].context);
    }
    bool AllDelivered() const {
        return std::all_of(m_reads.begin(), m_reads.end(),
                           [](const OneRead& read) { return read.Delivered(); });
    }
    /// After a failure a buffer holds all of its range or nothing.
    bool EachDeliveredOrUntouched() const {
        return std::all_of(m_reads.begin(), m_reads.end(), [](const OneRead& read) {
            return read.Delivered() || read.Untouched();
        });
    }

    Gate m_answer;
    std::vector<std::string> m_keys;
    std::vector<OneRead> m_reads;
};

TEST_F(AsyncReadFaults, ConnectionsResetAndRefusalsAreMadeUpForWithEveryByte) {
    const auto store = StoreWithThreads(static_cast<std::int32_t>(kReads));
    m_server.On("GET", TargetOf(0)).Once(AnswerTo(0).Reset(Place::AnswerByte(0)));
    m_server.On("GET", TargetOf(9)).Once(AnswerTo(9).Reset(Place::AnswerByte(20)));
    m_server.On("GET", TargetOf(30)).Once(AnswerTo(30).Reset(Place::BodyByte(1)));
    m_server.On("GET", TargetOf(31)).Once(AnswerTo(31).Close(Place::BodyByte(500)));
    m_server.On("GET", TargetOf(63)).Once(AnswerTo(63).Reset(Place::BodyByte(999)));
    m_server.On("GET", TargetOf(40)).Times(10, Answer::S3Error(503, "SlowDown", "Slower"));
    ServeTheRest(m_server);
    StartAll(*store);
    ASSERT_TRUE(m_answer.WaitUntilReached(kConnections));
    m_answer.Open();
    EXPECT_EQ(Wait(*store), 0);
    EXPECT_EQ(m_server.Faults(Fault::reset), 4);
    EXPECT_EQ(m_server.Faults(Fault::close), 1);
    EXPECT_TRUE(AllDelivered());
}

TEST_F(AsyncReadFaults, AStalledReadIsSentAgainOnceItsTimeIsUp) {
    LimitStalls(std::chrono::milliseconds(400));
    const auto store = StoreWithThreads(static_cast<std::int32_t>(kReads));
    m_server.On("GET", TargetOf(5))
        .Once(AnswerTo(5).Stall(Place::AnswerByte(0)))
        .Once(AnswerTo(5).Stall(Place::BodyByte(500)));
    ServeTheRest(m_server);
    m_answer.Open();
    StartAll(*store);
    EXPECT_EQ(Wait(*store), 0);
    EXPECT_GE(m_server.Faults(Fault::stall), 1);
    EXPECT_TRUE(AllDelivered());
}

TEST_F(AsyncReadFaults, AReadTurnedAwayForGoodIsTheResultAndNoBufferHoldsAPart) {
    const auto store = StoreWithThreads(static_cast<std::int32_t>(kReads));
    m_server.On("GET", TargetOf(11)).Always(AnswerTo(11).Reset(Place::BodyByte(500)));
    ServeTheRest(m_server);
    m_answer.Open();
    StartAll(*store);
    EXPECT_EQ(Wait(*store), StatusOf(Aws::S3::S3Errors::NETWORK_CONNECTION));
    EXPECT_EQ(Waits(), AllWaits());
    EXPECT_TRUE(m_reads[11].Untouched());
    EXPECT_TRUE(EachDeliveredOrUntouched());
}

TEST_F(AsyncReadFaults, AServerThatDiesFailsTheBatchAndTheNextOneWorks) {
    const auto store = StoreWithThreads(static_cast<std::int32_t>(kReads));
    auto dying = std::make_unique<ScriptedServer>();
    ServeTheRest(*dying);
    ResolveTo("127.0.0.1", dying->Port());
    StartAll(*store);
    ASSERT_TRUE(m_answer.WaitUntilReached(kConnections));
    dying.reset();
    EXPECT_EQ(Wait(*store), StatusOf(Aws::S3::S3Errors::NETWORK_CONNECTION));
    EXPECT_TRUE(std::all_of(m_reads.begin(), m_reads.end(),
                            [](const OneRead& read) { return read.Untouched(); }));
    EXPECT_EQ(m_log.CountContaining("complete = 64, EC = 99"), 1u);

    ResolveTo("127.0.0.1", m_server.Port());
    ServeDigits();
    OneRead next(3, 5);
    EXPECT_EQ(store->ReadObjectAsync(&next.context), 0);
    EXPECT_EQ(store->WaitForReadObjectAsync(&next.context), 0);
    EXPECT_TRUE(next.Delivered());
    EXPECT_THAT(m_server.Requests(), SizeIs(1));
}

}  // namespace
}  // namespace Mirqos::Test
