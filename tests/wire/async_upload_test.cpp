#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/support/Gate.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AsyncUpload : public WireTest {
protected:
    static std::string PartTarget(int number, const std::string& upload = "u1") {
        return "/the-bucket/k?partNumber=" + std::to_string(number) + "&uploadId=" + upload;
    }
    std::unique_ptr<AwsS3Store> StoreWithThreads(std::int32_t threads) {
        Setup setup;
        setup.threads = threads;
        // with the lines of its threads written, so that they do not come between later ones
        const std::size_t lines =
            m_log.CountContaining("is started.") + static_cast<std::size_t>(threads);
        auto store = MakeStore(setup);
        while (m_log.CountContaining("is started.") < lines) {
            std::this_thread::yield();
        }
        return store;
    }
    void Open(MIRQOSInterface& store, const std::string& upload = "u1") {
        m_server.On("POST", "/the-bucket/k?uploads")
            .Once(Answer::Status(200).Body("<InitiateMultipartUploadResult><UploadId>" + upload +
                                           "</UploadId></InitiateMultipartUploadResult>"));
        CloudStoreInitMultiPartUploadContext init;
        init.m_pszBucket = kBucket;
        init.m_pszKey = "k";
        CloudStoreInitMultiPartUploadOutcome outcome;
        ASSERT_EQ(store.InitMultiPartUpload(&init, &outcome), 0);
    }
    static std::int32_t Submit(MIRQOSInterface& store, int number, const std::string& bytes,
                               bool last, const char* upload = "u1") {
        CloudStoreMultiPartUploadContext part;
        part.m_pszBucket = kBucket;
        part.m_pszKey = "k";
        part.m_pszUploadId = upload;
        part.m_nPartNumber = static_cast<std::uint64_t>(number);
        part.m_pBuf = reinterpret_cast<const unsigned char*>(bytes.data());
        part.m_nBufLen = static_cast<std::int32_t>(bytes.size());
        part.m_bLastPart = last;
        return store.DoMultiPartUploadAsync(&part);
    }
    static std::int32_t Finish(MIRQOSInterface& store, std::int32_t parts,
                               const char* upload = "u1") {
        CloudStoreFinishMultiPartUploadContext finish;
        finish.m_pszBucket = kBucket;
        finish.m_pszKey = "k";
        finish.m_pszUploadId = upload;
        finish.m_nPartCount = parts;
        return store.FinishMultiPartUploadAsync(&finish);
    }
    ScriptedServer::Rule Part(int number, Answer answer) {
        return m_server.On("PUT", PartTarget(number)).Once(std::move(answer));
    }
    static Answer Tagged(const std::string& eTag) {
        return Answer::Status(200).Header("ETag", eTag);
    }
    void CompleteWith(const Answer& answer = Answer::Status(200).Body(
                          "<CompleteMultipartUploadResult></CompleteMultipartUploadResult>")) {
        m_server.On("POST", "/the-bucket/k?uploadId=").Always(answer);
    }
    std::vector<RecordedRequest> Completions() const {
        std::vector<RecordedRequest> found;
        for (RecordedRequest& request : m_server.Requests()) {
            if (request.method == "POST" &&
                request.target.find("?uploadId=") != std::string::npos) {
                found.push_back(std::move(request));
            }
        }
        return found;
    }
    std::string TagsSent() const {
        std::string tags;
        for (const RecordedRequest& completion : Completions()) {
            const std::string& body = completion.body;
            for (std::size_t at = 0; (at = body.find("<ETag>", at)) != std::string::npos;) {
                at += 6;
                tags += body.substr(at, body.find("</ETag>", at) - at) + ";";
            }
        }
        return tags;
    }
};

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
    EXPECT_EQ(TagsSent(), "e1;");
    EXPECT_EQ(store->GetRequestCount(), 3u);
    EXPECT_THAT(Lines(), testing::Not(Contains(HasSubstr("failed"))));
}

TEST_F(AsyncUpload, PartsAnsweredInEveryOrderAreCompletedInOrder) {
    std::vector<int> order = {1, 2, 3};
    do {
        const auto store = StoreWithThreads(3);
        const std::string upload =
            "u" + std::to_string(order[0]) + std::to_string(order[1]) + std::to_string(order[2]);
        Open(*store, upload);
        std::vector<Gate> gates(4);
        for (int number = 1; number <= 3; ++number) {
            m_server.On("PUT", PartTarget(number, upload))
                .Once(Tagged("e" + std::to_string(number))
                          .Wait(Place::AnswerByte(0), gates[static_cast<std::size_t>(number)]));
        }
        m_server.On("POST", "/the-bucket/k?uploadId=" + upload)
            .Once(Answer::Status(200).Body(
                "<CompleteMultipartUploadResult></CompleteMultipartUploadResult>"));
        for (int number = 1; number <= 3; ++number) {
            EXPECT_EQ(Submit(*store, number, "x", number == 3, upload.c_str()), 0);
        }
        for (const int number : order) {
            const Gate& gate = gates[static_cast<std::size_t>(number)];
            ASSERT_TRUE(gate.WaitUntilReached());
            gate.Open();
        }
        EXPECT_EQ(Finish(*store, 3, upload.c_str()), 0);
        EXPECT_THAT(Completions().back().body,
                    HasSubstr("<ETag>e1</ETag><PartNumber>1</PartNumber></Part><Part><ETag>e2"
                              "</ETag><PartNumber>2</PartNumber></Part><Part><ETag>e3</ETag>"
                              "<PartNumber>3</PartNumber>"));
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(AsyncUpload, AFailedPartAmongSuccessesIsTheResultAndNothingIsCompleted) {
    for (const int failing : {1, 2, 3}) {
        const auto store = StoreWithThreads(2);
        const std::string upload = "f" + std::to_string(failing);
        Open(*store, upload);
        CompleteWith();
        m_log.Clear();
        for (int number = 1; number <= 3; ++number) {
            m_server.On("PUT", PartTarget(number, upload))
                .Once(number == failing ? Answer::S3Error(403, "AccessDenied", "No") : Tagged("e"));
            EXPECT_EQ(Submit(*store, number, "x", number == 3, upload.c_str()), 0);
        }
        EXPECT_EQ(Finish(*store, 3, upload.c_str()), 15);
        EXPECT_THAT(Completions(), IsEmpty());
        EXPECT_THAT(Lines(), Contains("Part Upload:[eu-central-1:the-bucket:k:" +
                                      std::to_string(failing) + "] failed."));
        EXPECT_THAT(Lines(), Contains("Part Upload:[No]."));
        EXPECT_EQ(Finish(*store, 3, upload.c_str()), -1) << "its state is gone";
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
    m_server.On("PUT", PartTarget(2)).Once(Answer::S3Error(403, "AccessDenied", "No"));
    EXPECT_EQ(Submit(*store, 1, "x", false), 0);
    EXPECT_EQ(Submit(*store, 2, "x", true), 0);
    while (m_log.CountContaining("Part Upload:[No].") == 0) {
        std::this_thread::yield();
    }
    EXPECT_EQ(Finish(*store, 2), 15);
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

TEST_F(AsyncUpload, PartsAreSentAgainAfterAResetAndA503WithEveryByte) {
    const auto store = StoreWithThreads(2);
    Open(*store);
    CompleteWith();
    const std::string bytes(300000, 'b');
    m_server.On("PUT", PartTarget(1))
        .Once(Answer::Status(200).Reset(Place::RequestByte(1000)))
        .Once(Tagged("e1"));
    m_server.On("PUT", PartTarget(2))
        .Once(Answer::S3Error(503, "SlowDown", "Slower"))
        .Once(Tagged("e2"));
    EXPECT_EQ(Submit(*store, 1, bytes, false), 0);
    EXPECT_EQ(Submit(*store, 2, bytes, true), 0);
    EXPECT_EQ(Finish(*store, 2), 0);
    EXPECT_EQ(TagsSent(), "e1;e2;");
    EXPECT_EQ(m_server.Faults(Fault::reset), 1);
    int whole = 0;
    for (const RecordedRequest& request : m_server.Requests()) {
        whole += request.method == "PUT" && request.body == bytes ? 1 : 0;
    }
    EXPECT_EQ(whole, 3) << "twice part 2, once part 1";
}

TEST_F(AsyncUpload, TenThousandSmallPartsAreAllAccountedFor) {
    const auto store = StoreWithThreads(4);
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

TEST_F(AsyncUpload, AStoreReleasedWithPartsInFlightAnswersThemFirst) {
    Gate gate;
    std::thread opener;
    {
        const auto store = StoreWithThreads(2);
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
    EXPECT_EQ(m_log.CountContaining("is existed."), 2u);
}

}  // namespace
}  // namespace Mirqos::Test
