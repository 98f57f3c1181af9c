#include <algorithm>
#include <memory>
#include <numeric>
#include <thread>

#include "tests/support/Gate.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/AsyncUploadTest.h"

namespace Mirqos::Test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

TEST_F(AsyncUpload, APartSendsExactlyThisRequestAndItsBufferIsFreeAtOnce) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    Gate gate;
    Part(1, Tagged("e1").Wait(Place::AnswerByte(0), gate));
    CompleteWith();
    std::string bytes = "the bytes";
    EXPECT_EQ(Submit(*store, 1, bytes, true), 0);
    std::fill(bytes.begin(), bytes.end(), '?');
    ASSERT_TRUE(gate.WaitUntilReached());
    gate.Open();
    EXPECT_EQ(Finish(*store, 1), 0);
    const RecordedRequest request = m_server.Requests().at(1);
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, PartTarget(1));
    EXPECT_EQ(request.body, "the bytes");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(request), "");
    EXPECT_EQ(UnknownHeaders(Completions().at(0)), "");
    EXPECT_EQ(TagsSent(), "e1;");
    EXPECT_EQ(store->GetRequestCount(), 3u);
    EXPECT_THAT(Lines(), testing::Not(Contains(HasSubstr("failed"))));
}

TEST_F(AsyncUpload, PartsAnsweredInEveryOrderAreCompletedInOrder) {
    for (int parts = 1; parts <= 4; ++parts) {
        std::vector<int> order(static_cast<std::size_t>(parts));
        std::iota(order.begin(), order.end(), 1);
        std::string tags;
        for (const int number : order) {
            tags += "e" + std::to_string(number) + ";";
        }
        do {
            const auto store = StoreWithThreads(parts);
            std::string upload = "u";
            for (const int number : order) {
                upload += std::to_string(number);
            }
            Open(*store, upload);
            CompleteWith();
            std::vector<Gate> gates(order.size());
            for (int number = 1; number <= parts; ++number) {
                Part(number,
                     Tagged("e" + std::to_string(number))
                         .Wait(Place::AnswerByte(0), gates[static_cast<std::size_t>(number - 1)]),
                     upload);
                EXPECT_EQ(Submit(*store, number, "x", number == parts, upload), 0);
            }
            std::uint32_t answered = 0;
            for (const int number : order) {
                const Gate& gate = gates[static_cast<std::size_t>(number - 1)];
                ASSERT_TRUE(gate.WaitUntilReached());
                gate.Open();
                AwaitAnswers(*store, ++answered, upload);
            }
            const std::size_t sent = TagsSent().size();
            EXPECT_EQ(Finish(*store, parts, upload), 0);
            EXPECT_EQ(TagsSent().substr(sent), tags) << upload;
        } while (std::next_permutation(order.begin(), order.end()));
    }
}

TEST_F(AsyncUpload, FailedPartsAmongSuccessesAreTheResultAndNothingIsCompleted) {
    const std::vector<std::vector<int>> cases{{1}, {2}, {3}, {1, 3}, {1, 2, 3}};
    for (const std::vector<int>& failing : cases) {
        const auto store = StoreWithThreads(2);
        const std::string upload =
            "f" + testing::PrintToString(failing.size()) + "-" + std::to_string(failing.front());
        Open(*store, upload);
        CompleteWith();
        m_log.Clear();
        std::vector<std::string> lines;
        for (int number = 1; number <= 3; ++number) {
            const bool fails = std::count(failing.begin(), failing.end(), number) != 0;
            Part(number, fails ? Answer::S3Error(403, "AccessDenied", "No") : Tagged("e"), upload);
            EXPECT_EQ(Submit(*store, number, "x", number == 3, upload), 0);
            if (fails) {
                lines.push_back("Part Upload:[eu-central-1:the-bucket:k:" + std::to_string(number) +
                                "] failed.");
                lines.push_back("Part Upload:[No].");
            }
        }
        EXPECT_EQ(Finish(*store, 3, upload), 15);
        EXPECT_THAT(Completions(), IsEmpty());
        EXPECT_EQ(Aborts(), 0u) << "the upload on the service is the host's to abort";
        EXPECT_THAT(PartLines(), UnorderedElementsAreArray(lines));
        EXPECT_EQ(StoreTestAccess::Upload(*store, upload.c_str()), nullptr);
        EXPECT_EQ(Finish(*store, 3, upload), -1);
    }
}

TEST_F(AsyncUpload, TheErrorOfThePartThatFailedLastIsTheResult) {
    const auto store = StoreWithThreads(2);
    Open(*store);
    Gate second;
    Part(1, Answer::S3Error(403, "AccessDenied", "No"));
    Part(2, Answer::S3Error(404, "NoSuchUpload", "Gone").Wait(Place::AnswerByte(0), second));
    EXPECT_EQ(Submit(*store, 1, "x", false), 0);
    EXPECT_EQ(Submit(*store, 2, "x", true), 0);
    ASSERT_TRUE(second.WaitUntilReached());
    while (m_log.CountContaining("Part Upload:[No].") == 0) {
        std::this_thread::yield();
    }
    second.Open();
    EXPECT_EQ(Finish(*store, 2), StatusOf(Aws::S3::S3Errors::NO_SUCH_UPLOAD));
}

TEST_F(AsyncUpload, AFinishAfterTheLastAnswerDoesNotWait) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    CompleteWith();
    Part(1, Tagged("e1"));
    Part(2, Tagged("e2"));
    EXPECT_EQ(Submit(*store, 1, "x", false), 0);
    EXPECT_EQ(Submit(*store, 2, "x", true), 0);
    AwaitAnswers(*store, 2);
    EXPECT_EQ(Finish(*store, 2), 0);
    EXPECT_EQ(TagsSent(), "e1;e2;");
}

TEST_F(AsyncUpload, AFinishBeforeTheAnswersWaitsForTheLastAndNoLonger) {
    const auto store = StoreWithThreads(2);
    Open(*store);
    CompleteWith();
    std::vector<Gate> gates(2);
    for (const int number : {1, 2}) {
        const Gate& gate = gates[static_cast<std::size_t>(number - 1)];
        Part(number, Tagged("e" + std::to_string(number)).Wait(Place::AnswerByte(0), gate));
        EXPECT_EQ(Submit(*store, number, "x", false), 0);
        ASSERT_TRUE(gate.WaitUntilReached());
    }
    const auto state = StoreTestAccess::Upload(*store, "u1");
    std::int32_t result = -2;
    std::thread host([&] { result = Finish(*store, 2); });
    // The finish marks the last part under the lock that only its wait gives up.
    while (!state->m_bLastPartSubmitted) {
        std::this_thread::yield();
    }
    gates[1].Open();
    AwaitAnswers(*store, 1);
    EXPECT_THAT(Completions(), IsEmpty()) << "one answer is still missing";
    gates[0].Open();
    host.join();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(TagsSent(), "e1;e2;");
}

TEST_F(AsyncUpload, ANumberSentTwiceCountsTwiceAndTheAnswerHandledLastStands) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    CompleteWith();
    m_server.On("PUT", PartTarget(1)).Once(Tagged("first")).Once(Tagged("second"));
    EXPECT_EQ(Submit(*store, 1, "aaaa", false), 0);
    EXPECT_EQ(Submit(*store, 1, "bbbb", true), 0);
    EXPECT_EQ(Finish(*store, 1), 0);
    EXPECT_EQ(TagsSent(), "second;");
    EXPECT_EQ(m_server.Requests().at(1).body, "aaaa");
    EXPECT_EQ(m_server.Requests().at(2).body, "bbbb");
}

TEST_F(AsyncUpload, OfANumberSentTwiceTheTagOfTheLaterAnswerStandsAlsoWhereItWasSentFirst) {
    const auto store = StoreWithThreads(2);
    Open(*store);
    CompleteWith();
    Gate gates[2];
    m_server.On("PUT", PartTarget(1))
        .Once(Tagged("first").Wait(Place::AnswerByte(0), gates[0]))
        .Once(Tagged("second").Wait(Place::AnswerByte(0), gates[1]));
    EXPECT_EQ(Submit(*store, 1, "aaaa", false), 0);
    ASSERT_TRUE(gates[0].WaitUntilReached());
    EXPECT_EQ(Submit(*store, 1, "bbbb", true), 0);
    ASSERT_TRUE(gates[1].WaitUntilReached());
    gates[1].Open();
    AwaitAnswers(*store, 1);
    gates[0].Open();
    EXPECT_EQ(Finish(*store, 1), 0);
    EXPECT_EQ(TagsSent(), "first;");
}

TEST_F(AsyncUpload, OfThePartNumberTheLow32BitsCount) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    CompleteWith();
    Part(2, Tagged("e2"));
    EXPECT_EQ(Submit(*store, (std::int64_t{1} << 32) + 2, "x", true), 0);
    EXPECT_EQ(StoreTestAccess::Upload(*store, "u1")->m_mapPartBuffers.count(2), 1u);
    EXPECT_EQ(Finish(*store, 2), 0);
    EXPECT_EQ(TagsSent(), ";e2;");
}

TEST_F(AsyncUpload, AReplacedBodyIsSentWholeAndFreedAsSoonAsNoRequestCanUseIt) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    CompleteWith();
    // far more than sockets hold, so that the rest of it is read after the replacement
    const std::string first(20 * 1024 * 1024, 'a');
    const std::string second = "bbbb";
    Gate inFirst;
    Gate inSecond;
    m_server.On("PUT", PartTarget(1))
        .Once(Tagged("first").Wait(Place::RequestByte(1), inFirst))
        .Once(Tagged("second").Wait(Place::AnswerByte(0), inSecond));
    EXPECT_EQ(Submit(*store, 1, first, false), 0);
    const auto state = StoreTestAccess::Upload(*store, "u1");
    const std::weak_ptr<Aws::Utils::Array<unsigned char>> body = state->m_mapPartBuffers.at(1);
    const std::weak_ptr<Aws::Utils::Stream::PreallocatedStreamBuf> buffer =
        state->m_mapPartStreamBufs.at(1);
    ASSERT_TRUE(inFirst.WaitUntilReached());
    EXPECT_EQ(Submit(*store, 1, second, true), 0);
    EXPECT_FALSE(body.expired()) << "its request is being sent";
    EXPECT_FALSE(buffer.expired());
    inFirst.Open();
    // The one thread has freed the first request once it sends the second.
    ASSERT_TRUE(inSecond.WaitUntilReached());
    EXPECT_TRUE(body.expired());
    EXPECT_TRUE(buffer.expired());
    EXPECT_EQ(state->m_mapPartBuffers.size(), 1u);
    inSecond.Open();
    EXPECT_EQ(Finish(*store, 1), 0);
    EXPECT_EQ(TagsSent(), "second;");
    ASSERT_EQ(Sent(1).size(), 2u);
    EXPECT_TRUE(Sent(1)[0].body == first);
    EXPECT_TRUE(Sent(1)[1].body == second);
}

TEST_F(AsyncUpload, TheFinishFreesEveryBodyBeforeItCompletes) {
    const auto store = StoreWithThreads(2);
    Open(*store);
    std::vector<std::weak_ptr<Aws::Utils::Array<unsigned char>>> bodies;
    for (int number = 1; number <= 5; ++number) {
        Part(number, Tagged("e"));
        EXPECT_EQ(Submit(*store, number, "some bytes", number == 5), 0);
        const auto state = StoreTestAccess::Upload(*store, "u1");
        bodies.push_back(state->m_mapPartBuffers.at(static_cast<std::uint32_t>(number)));
    }
    AwaitAnswers(*store, 5);
    for (const auto& body : bodies) {
        EXPECT_FALSE(body.expired()) << "kept until the finish";
    }
    Gate completing;
    CompleteWith(Completed().Wait(Place::AnswerByte(0), completing));
    std::thread host([&] { EXPECT_EQ(Finish(*store, 5), 0); });
    EXPECT_TRUE(completing.WaitUntilReached());
    // The threads let go of a request a moment after its answer was handled.
    for (const auto& body : bodies) {
        while (!body.expired()) {
            std::this_thread::yield();
        }
    }
    completing.Open();
    host.join();
}

TEST_F(AsyncUpload, PartsSentSynchronouslyAreCompletedWithTheOthers) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    CompleteWith();
    m_server.On("PUT", PartTarget(1)).Once(Tagged("e1"));
    m_server.On("PUT", PartTarget(2)).Once(Tagged("synchronous")).Once(Tagged("asynchronous"));
    m_server.On("PUT", PartTarget(3)).Once(Tagged("asynchronous")).Once(Tagged("synchronous"));
    const auto send = [&](int number) {
        CloudStoreMultiPartUploadContext part;
        part.m_pszBucket = kBucket;
        part.m_pszKey = "k";
        part.m_pszUploadId = "u1";
        part.m_nPartNumber = static_cast<std::uint64_t>(number);
        part.m_pBuf = reinterpret_cast<const unsigned char*>("xyz");
        part.m_nBufLen = 3;
        return store->MultiPartUpload(&part);
    };
    EXPECT_EQ(send(1), 0);
    EXPECT_EQ(send(2), 0);
    EXPECT_EQ(Submit(*store, 2, "x", false), 0);
    EXPECT_EQ(Submit(*store, 3, "x", true), 0);
    AwaitAnswers(*store, 2);
    EXPECT_EQ(send(3), 0);
    EXPECT_EQ(Finish(*store, 3), 0);
    EXPECT_EQ(TagsSent(), "e1;asynchronous;asynchronous;")
        << "an asynchronous answer replaces a tag, a synchronous one does not";
}

TEST_F(AsyncUpload, APartCountBeyondThePartsSentGoesWithEmptyTagsAndAnEmptyPartIsAPart) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    CompleteWith();
    Part(2, Tagged("e2"));
    EXPECT_EQ(Submit(*store, 2, "", true), 0);
    EXPECT_EQ(Finish(*store, 3), 0);
    EXPECT_EQ(TagsSent(), ";e2;;");
    EXPECT_EQ(Sent(2).at(0).Value("content-length"), "0");
}

TEST_F(AsyncUpload, KeysTakeTheSubstitutionAndLinesOfPartsShowThemAsSent) {
    Setup setup;
    setup.provider = 6;
    const auto store = MakeStore(setup);
    Open(*store);
    m_server.On("PUT", "/the-bucket/a%2Bb?partNumber=1")
        .Once(Answer::S3Error(403, "AccessDenied", "No"));
    CloudStoreMultiPartUploadContext part;
    part.m_pszBucket = kBucket;
    part.m_pszKey = "a@b";
    part.m_pszUploadId = "u1";
    part.m_nPartNumber = 1;
    part.m_pBuf = reinterpret_cast<const unsigned char*>("x");
    part.m_nBufLen = 1;
    part.m_bLastPart = true;
    EXPECT_EQ(store->DoMultiPartUploadAsync(&part), 0);
    EXPECT_EQ(Finish(*store, 1), 15);
    EXPECT_THAT(PartLines(), Contains("Part Upload:[eu-central-1:the-bucket:a+b:1] failed."));
}

TEST_F(AsyncUpload, AFinishWithNoPartMarkedLastEndsAllTheSame) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    CompleteWith();
    Gate gate;
    Part(1, Tagged("e1").Wait(Place::AnswerByte(0), gate));
    EXPECT_EQ(Submit(*store, 1, "x", false), 0);
    std::int32_t result = -2;
    std::thread host([&] { result = Finish(*store, 1); });
    ASSERT_TRUE(gate.WaitUntilReached());
    gate.Open();
    host.join();
    EXPECT_EQ(result, 0);
}

TEST_F(AsyncUpload, TwoUploadsOnOneStoreDoNotMix) {
    const auto store = StoreWithThreads(3);
    Open(*store, "u1");
    Open(*store, "u2");
    CompleteWith();
    for (const char* upload : {"u1", "u2"}) {
        for (int number = 1; number <= 2; ++number) {
            m_server.On("PUT", PartTarget(number, upload))
                .Once(Tagged(upload + std::string("-") + std::to_string(number)));
        }
    }
    for (int number = 1; number <= 2; ++number) {
        EXPECT_EQ(Submit(*store, number, "x", number == 2, "u1"), 0);
        EXPECT_EQ(Submit(*store, number, "y", number == 2, "u2"), 0);
    }
    EXPECT_EQ(Finish(*store, 2, "u2"), 0);
    EXPECT_EQ(TagsSent(), "u2-1;u2-2;");
    EXPECT_EQ(Finish(*store, 2, "u1"), 0);
    EXPECT_EQ(TagsSent(), "u2-1;u2-2;u1-1;u1-2;");
}

TEST_F(AsyncUpload, AFailureOfOneUploadDoesNotTouchAnother) {
    const auto store = StoreWithThreads(2);
    Open(*store, "u1");
    Open(*store, "u2");
    CompleteWith();
    for (int number = 1; number <= 2; ++number) {
        Part(number, Answer::S3Error(403, "AccessDenied", "No"), "u1");
        Part(number, Tagged("e" + std::to_string(number)), "u2");
        EXPECT_EQ(Submit(*store, number, "x", number == 2, "u1"), 0);
        EXPECT_EQ(Submit(*store, number, "y", number == 2, "u2"), 0);
    }
    EXPECT_EQ(Finish(*store, 2, "u1"), 15);
    EXPECT_EQ(Finish(*store, 2, "u2"), 0);
    EXPECT_EQ(TagsSent(), "e1;e2;");
}

TEST_F(AsyncUpload, AnUnknownUploadIsReportedAndNothingIsSent) {
    const auto store = StoreWithThreads(1);
    m_log.Clear();
    EXPECT_EQ(static_cast<std::uint32_t>(Submit(*store, 1, "x", true)), 0xFFFFFFFFu);
    EXPECT_EQ(static_cast<std::uint32_t>(Finish(*store, 1)), 0xFFFFFFFFu);
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_EQ(m_log.CountContaining("AwsS3Store::DoMultiPartUploadAsync unknown error."), 1u);
    EXPECT_EQ(m_log.CountContaining("AwsS3Store::FinishMultiPartUploadAsync unknown error."), 1u);
    EXPECT_EQ(store->GetRequestCount(), 2u);
}

TEST_F(AsyncUpload, AFailedCompletionGivesItsStatusAndBothLinesAndForgetsTheUpload) {
    if (!kNoticesEmbeddedErrors) {
        GTEST_SKIP() << "1.7 takes it for a success";
    }
    const auto store = StoreWithThreads(1);
    Open(*store);
    Part(1, Tagged("e1"));
    CompleteWith(Answer::S3Error(200, "InternalError", "Later"));
    EXPECT_EQ(Submit(*store, 1, "x", true), 0);
    const int status = StatusOf(Aws::S3::S3Errors::INTERNAL_FAILURE);
    EXPECT_EQ(Finish(*store, 1), status);
    EXPECT_THAT(Lines(), Contains("Complete Multi-Part [eu-central-1:the-bucket:k:u1:1] failed."));
    EXPECT_THAT(Lines(), Contains("Reason:[Later],EC:[" + std::to_string(status) + "]."));
    EXPECT_EQ(Finish(*store, 1), -1);
}

TEST_F(AsyncUpload, AnAnswerAfterASynchronousFinishIsReportedAndHarmsNothing) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    CompleteWith();
    Gate gate;
    Part(1, Tagged("e1").Wait(Place::AnswerByte(0), gate));
    EXPECT_EQ(Submit(*store, 1, "x", true), 0);
    ASSERT_TRUE(gate.WaitUntilReached());
    CloudStoreFinishMultiPartUploadContext finish;
    finish.m_pszBucket = kBucket;
    finish.m_pszKey = "k";
    finish.m_pszUploadId = "u1";
    finish.m_nPartCount = 1;
    EXPECT_EQ(store->FinishMultiPartUpload(&finish), 0);
    EXPECT_EQ(TagsSent(), ";") << "part 1 has no tag yet";
    gate.Open();
    while (m_log.CountContaining("AwsS3Store::HandleUploadPartAsync unknown error.") == 0) {
        std::this_thread::yield();
    }
    EXPECT_EQ(Finish(*store, 1), -1);
}

TEST_F(AsyncUpload, AnAbortedUploadStaysKnownUntilItsFinish) {
    const auto store = StoreWithThreads(1);
    Open(*store);
    Part(1, Answer::S3Error(404, "NoSuchUpload", "Gone"));
    m_server.On("DELETE", "/the-bucket/k?uploadId=u1").Once(Answer::Status(204));
    EXPECT_EQ(Abort(*store), 0);
    EXPECT_EQ(Submit(*store, 1, "x", true), 0);
    EXPECT_EQ(Finish(*store, 1), StatusOf(Aws::S3::S3Errors::NO_SUCH_UPLOAD));
    EXPECT_THAT(Completions(), IsEmpty());
    EXPECT_EQ(Finish(*store, 1), -1);
}

TEST_F(AsyncUpload, TenThousandSmallPartsAreAllAccountedFor) {
    // as many as a client opens connections: on Wine a small body waits for the acknowledgement of
    // its head, which the system delays by 40 ms
    const auto store = StoreWithThreads(25);
    Open(*store);
    CompleteWith();
    m_server.On("PUT", "/the-bucket/k?partNumber=").Call([](const RecordedRequest& request) {
        return Answer::Status(200).Header("ETag", "e" + request.body);
    });
    constexpr int kParts = 10000;
    for (int number = 1; number <= kParts; ++number) {
        ASSERT_EQ(Submit(*store, number, std::to_string(number), number == kParts), 0);
    }
    EXPECT_EQ(Finish(*store, kParts), 0);
    std::string expected;
    for (int number = 1; number <= kParts; ++number) {
        expected += "e" + std::to_string(number) + ";";
    }
    EXPECT_EQ(TagsSent(), expected);
}

class AsyncUploadRelease : public AsyncUpload, public testing::WithParamInterface<int> {};

TEST_P(AsyncUploadRelease, AnswersThePartsInFlightFirst) {
    const int threads = GetParam();
    Gate gate;
    std::thread opener;
    {
        const auto store = StoreWithThreads(threads);
        Open(*store, "open");
        for (int number = 1; number <= 3; ++number) {
            m_server.On("PUT", PartTarget(number, "open"))
                .Once(Tagged("e").Wait(Place::AnswerByte(0), gate));
            EXPECT_EQ(Submit(*store, number, "x", false, "open"), 0);
        }
        ASSERT_TRUE(gate.WaitUntilReached(2));
        opener = std::thread([&] { gate.Open(); });
    }
    opener.join();
    EXPECT_EQ(m_server.Requests().size(), 4u);
    EXPECT_EQ(m_log.CountContaining("is existed."), static_cast<std::size_t>(threads));
}

// 0: the SDK's own, of which each call has one
INSTANTIATE_TEST_SUITE_P(Threads, AsyncUploadRelease, testing::Values(0, 2));

TEST_F(AsyncUpload, StatesOfUploadsNeverFinishedOutliveTheirStore) {
    std::weak_ptr<MultiPartUploadState> untouched;
    std::weak_ptr<MultiPartUploadState> answered;
    {
        const auto store = StoreWithThreads(1);
        Open(*store, "untouched");
        Open(*store, "answered");
        Part(1, Tagged("e"), "answered");
        EXPECT_EQ(Submit(*store, 1, "x", true, "answered"), 0);
        AwaitAnswers(*store, 1, "answered");
        untouched = StoreTestAccess::Upload(*store, "untouched");
        answered = StoreTestAccess::Upload(*store, "answered");
    }
    EXPECT_FALSE(untouched.expired());
    EXPECT_FALSE(answered.expired());
}

TEST_F(AsyncUpload, AStoreReleasedWithUploadsOpenNeitherCompletesNorAbortsThem) {
    {
        const auto store = StoreWithThreads(2);
        Open(*store, "untouched");
        Open(*store, "answered");
        Part(1, Tagged("e"), "answered");
        EXPECT_EQ(Submit(*store, 1, "x", true, "answered"), 0);
        AwaitAnswers(*store, 1, "answered");
        Open(*store, "failed");
        Part(1, Answer::S3Error(403, "AccessDenied", "No"), "failed");
        EXPECT_EQ(Submit(*store, 1, "x", false, "failed"), 0);
    }
    EXPECT_EQ(m_server.Requests().size(), 5u);
    EXPECT_THAT(Completions(), IsEmpty());
    EXPECT_EQ(Aborts(), 0u);
}

}  // namespace
}  // namespace Mirqos::Test
