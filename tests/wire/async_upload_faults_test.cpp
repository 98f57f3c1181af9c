#include <algorithm>
#include <memory>
#include <set>

#include "tests/support/Gate.h"
#include "tests/wire/AsyncUploadTest.h"

namespace Mirqos::Test {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

/// What the network does to an upload of which all parts have been handed over and none has been
/// answered: as many are on their way as a client opens connections, the others wait for one.
class AsyncUploadFaults : public AsyncUpload {
protected:
    static constexpr int kParts = 64;
    static constexpr int kConnections = 25;
    static constexpr milliseconds kStall{400};

    static std::string BodyOf(int number) {
        std::string body;
        const std::size_t size = 20000 + 97 * static_cast<std::size_t>(number);
        for (std::size_t i = 0; i < size; ++i) {
            body += static_cast<char>((i * 31 + i / 251 + static_cast<std::size_t>(number)) % 256);
        }
        return body;
    }
    static Answer TagOf(int number) { return Tagged("e" + std::to_string(number)); }
    static std::string AllTags() {
        std::string tags;
        for (int number = 1; number <= kParts; ++number) {
            tags += "e" + std::to_string(number) + ";";
        }
        return tags;
    }

    /// The parts for which nothing else was said are taken, each attempt.
    void TakeTheRest(ScriptedServer& server) {
        for (int number = 1; number <= kParts; ++number) {
            server.On("PUT", PartTarget(number))
                .Always(TagOf(number).Wait(Place::AnswerByte(0), m_answer));
        }
    }
    void SubmitAll(MIRQOSInterface& store) {
        for (int number = 1; number <= kParts; ++number) {
            ASSERT_EQ(Submit(store, number, BodyOf(number), number == kParts), 0);
        }
    }
    /// Every part arrived whole and unaltered, whatever was cut before; what was cut is its
    /// beginning.
    void ExpectEveryByteArrived() const {
        for (int number = 1; number <= kParts; ++number) {
            const std::string body = BodyOf(number);
            int whole = 0;
            for (const RecordedRequest& request : Sent(number)) {
                EXPECT_TRUE(body.compare(0, request.body.size(), request.body) == 0) << number;
                EXPECT_EQ(request.complete, request.body.size() == body.size()) << number;
                whole += request.complete ? 1 : 0;
            }
            EXPECT_GE(whole, 1) << number;
        }
    }
    void ExpectCompletedOnce() const {
        EXPECT_EQ(TagsSent(), AllTags());
        EXPECT_THAT(Completions(), SizeIs(1));
        EXPECT_EQ(Aborts(), 0u);
        EXPECT_THAT(PartLines(), IsEmpty());
    }
    /// The upload is forgotten here and open on the service, where the host can abort it.
    void ExpectLeftToTheHost(MIRQOSInterface& store) {
        EXPECT_THAT(Completions(), IsEmpty());
        EXPECT_EQ(Aborts(), 0u);
        EXPECT_EQ(Finish(store, kParts), -1);
        EXPECT_EQ(Submit(store, 1, "x", true), -1);
        m_server.On("DELETE", "/the-bucket/k?uploadId=u1").Once(Answer::Status(204));
        EXPECT_EQ(Abort(store), 0);
        EXPECT_EQ(Aborts(), 1u);
    }
    static std::string FailedLine(int number) {
        return "Part Upload:[eu-central-1:the-bucket:k:" + std::to_string(number) + "] failed.";
    }

    Gate m_answer;
};

TEST_F(AsyncUploadFaults, ConnectionsResetAtAnyPlaceAreMadeUpForWithEveryByte) {
    const auto store = StoreWithThreads(kParts);
    Open(*store);
    CompleteWith();
    const std::vector<std::pair<int, Place>> resets{
        {1, Place::RequestByte(0)}, {7, Place::RequestByte(5000)}, {20, Place::RequestByte(20000)},
        {33, Place::AnswerByte(0)}, {50, Place::AnswerByte(12)},   {64, Place::AnswerByte(30)}};
    for (const auto& [number, place] : resets) {
        m_server.On("PUT", PartTarget(number))
            .Once(TagOf(number).Wait(place, m_answer).Reset(place));
    }
    TakeTheRest(m_server);
    SubmitAll(*store);
    ASSERT_TRUE(m_answer.WaitUntilReached(kConnections));
    m_answer.Open();
    EXPECT_EQ(Finish(*store, kParts), 0);
    EXPECT_EQ(m_server.Faults(Fault::reset), static_cast<int>(resets.size()));
    ExpectEveryByteArrived();
    ExpectCompletedOnce();
}

TEST_F(AsyncUploadFaults, PartsTurnedAwayWith503AreSentAgainWhole) {
    const auto store = StoreWithThreads(kParts);
    Open(*store);
    CompleteWith();
    const Answer slower = Answer::S3Error(503, "SlowDown", "Slower");
    for (const auto& [number, times] :
         std::vector<std::pair<int, int>>{{1, 1}, {32, 10}, {64, 2}}) {
        m_server.On("PUT", PartTarget(number))
            .Times(times, Answer(slower).Wait(Place::AnswerByte(0), m_answer));
    }
    TakeTheRest(m_server);
    SubmitAll(*store);
    ASSERT_TRUE(m_answer.WaitUntilReached(kConnections));
    m_answer.Open();
    EXPECT_EQ(Finish(*store, kParts), 0);
    EXPECT_THAT(Waits(), SizeIs(13));
    EXPECT_THAT(Sent(1), SizeIs(2));
    EXPECT_THAT(Sent(32), SizeIs(11));
    EXPECT_THAT(Sent(64), SizeIs(3));
    ExpectEveryByteArrived();
    ExpectCompletedOnce();
}

TEST_F(AsyncUploadFaults, APartTurnedAwayForGoodFailsTheUploadAfterAllAttempts) {
    const auto store = StoreWithThreads(kParts);
    Open(*store);
    m_server.On("PUT", PartTarget(10)).Always(Answer::S3Error(503, "SlowDown", "Slower"));
    TakeTheRest(m_server);
    m_answer.Open();
    SubmitAll(*store);
    EXPECT_EQ(Finish(*store, kParts), StatusOf(Aws::S3::S3Errors::SLOW_DOWN));
    EXPECT_THAT(PartLines(), ElementsAre(FailedLine(10), "Part Upload:[Slower]."));
    EXPECT_EQ(Waits(), AllWaits());
    EXPECT_THAT(Sent(10), SizeIs(11));
    ExpectEveryByteArrived();
    ExpectLeftToTheHost(*store);
}

TEST_F(AsyncUploadFaults, AStalledPartIsSentAgainOnceItsTimeIsUp) {
    LimitStalls(kStall);
    const auto store = StoreWithThreads(kParts);
    Open(*store);
    CompleteWith();
    m_server.On("PUT", PartTarget(5)).Once(TagOf(5).Stall(Place::AnswerByte(0)));
    TakeTheRest(m_server);
    m_answer.Open();
    SubmitAll(*store);
    EXPECT_EQ(Finish(*store, kParts), 0);
    EXPECT_EQ(m_server.Faults(Fault::stall), 1);
    EXPECT_GE(Sent(5).size(), 2u);
    ExpectEveryByteArrived();
    ExpectCompletedOnce();
}

TEST_F(AsyncUploadFaults, APartStalledForGoodFailsTheUploadAfterAllAttempts) {
    LimitStalls(kStall);
    const auto store = StoreWithThreads(kParts);
    Open(*store);
    m_server.On("PUT", PartTarget(5)).Always(TagOf(5).Stall(Place::AnswerByte(0)));
    TakeTheRest(m_server);
    m_answer.Open();
    SubmitAll(*store);
    EXPECT_EQ(Finish(*store, kParts), StatusOf(Aws::S3::S3Errors::NETWORK_CONNECTION));
    const auto lines = PartLines();
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(lines[0], FailedLine(5));
    EXPECT_THAT(lines[1], StartsWith("Part Upload:["));
    EXPECT_GT(lines[1].size(), std::string("Part Upload:[].").size());
    EXPECT_LE(Sent(5).size(), 11u) << "a busy machine may lose an attempt before it arrives";
    ExpectEveryByteArrived();
    ExpectLeftToTheHost(*store);
}

TEST_F(AsyncUploadFaults, AServerThatDiesFailsEveryPartOnceAndHangsNothing) {
    const auto store = StoreWithThreads(kParts);
    Open(*store);
    auto dying = std::make_unique<ScriptedServer>();
    TakeTheRest(*dying);
    ResolveTo("127.0.0.1", dying->Port());
    SubmitAll(*store);
    ASSERT_TRUE(m_answer.WaitUntilReached(kConnections));
    const std::vector<RecordedRequest> arrived = dying->Requests();
    dying.reset();
    EXPECT_EQ(Finish(*store, kParts), StatusOf(Aws::S3::S3Errors::NETWORK_CONNECTION));

    EXPECT_THAT(arrived, SizeIs(kConnections));
    for (const RecordedRequest& request : arrived) {
        const int number = std::stoi(request.target.substr(request.target.find('=') + 1));
        EXPECT_TRUE(request.complete && request.body == BodyOf(number)) << number;
    }
    const auto lines = PartLines();
    ASSERT_THAT(lines, SizeIs(2 * kParts));
    std::set<std::string> failed;
    for (std::size_t i = 0; i < lines.size(); i += 2) {
        failed.insert(lines[i]);
        EXPECT_THAT(lines[i + 1], StartsWith("Part Upload:["));
        EXPECT_THAT(lines[i + 1], EndsWith("]."));
    }
    for (int number = 1; number <= kParts; ++number) {
        EXPECT_EQ(failed.count(FailedLine(number)), 1u) << number;
    }
    ResolveTo("127.0.0.1", m_server.Port());
    ExpectLeftToTheHost(*store);
}

TEST_F(AsyncUploadFaults, AServerThatDiesBeforeItAnswersTheCompletionFailsIt) {
    const auto store = StoreWithThreads(4);
    Open(*store);
    TakeTheRest(m_server);
    CompleteWith(Completed().Reset(Place::AnswerByte(0)));
    m_answer.Open();
    SubmitAll(*store);
    const int status = StatusOf(Aws::S3::S3Errors::NETWORK_CONNECTION);
    EXPECT_EQ(Finish(*store, kParts), status);
    ExpectEveryByteArrived();
    EXPECT_THAT(Completions(), SizeIs(testing::Ge(11u)));
    EXPECT_EQ(Aborts(), 0u);
    const auto lines = Lines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2],
              "Complete Multi-Part [eu-central-1:the-bucket:k:u1:64] failed.");
    EXPECT_THAT(lines.back(), StartsWith("Reason:["));
    EXPECT_THAT(lines.back(), EndsWith("],EC:[" + std::to_string(status) + "]."));
    EXPECT_EQ(Finish(*store, kParts), -1) << "forgotten all the same";
}

}  // namespace
}  // namespace Mirqos::Test
