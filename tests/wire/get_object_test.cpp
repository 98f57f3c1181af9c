#include <limits>

#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

class GetObject : public WireTest, public testing::WithParamInterface<Style> {};

INSTANTIATE_TEST_SUITE_P(Styles, GetObject, testing::Values(Style::path, Style::virtualHost),
                         [](const auto& info) {
                             return info.param == Style::path ? "Path" : "VirtualHost";
                         });

TEST_P(GetObject, SendsExactlyThisRequest) {
    m_server.Next(Answer::Status(206)
                      .Header("Content-Range", "bytes 100-199/5000")
                      .Body(std::string(100, 'r')));
    const auto store = MakeStore(In(GetParam()));
    const ReadResult read = Read(*store, "folder/file.bin", 100, 100);
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.size, 100u);
    EXPECT_EQ(read.buffer, std::string(100, 'r') + std::string(16, ReadResult::kUntouchedByte));

    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "GET");
    if (GetParam() == Style::path) {
        EXPECT_EQ(request.target, "/the-bucket/folder/file.bin");
        EXPECT_EQ(request.Value("host"), kEndpoint);
    } else {
        EXPECT_EQ(request.target, "/folder/file.bin");
        EXPECT_EQ(request.Value("host"), kVirtualHost);
    }
    EXPECT_EQ(request.Value("range"), "bytes=100-199");
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(request.Header("content-length"), nullptr);
    EXPECT_EQ(request.Header("content-type") == nullptr, kBundledSdk);
    EXPECT_EQ(request.Value("x-amz-content-sha256"), Sha256Of(""));
    EXPECT_TRUE(IsAmzDate(request.Value("x-amz-date"))) << request.Value("x-amz-date");
    EXPECT_EQ(SignedHeadersOf(request), kBundledSdk ? "host;x-amz-content-sha256;x-amz-date"
                                                    : "host;range;x-amz-content-sha256;x-amz-date");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(request), "");
    EXPECT_EQ(store->GetRequestCount(), 1u);
    EXPECT_TRUE(Lines().empty()) << "a success writes no line";
}

using GetObjectRange = WireTest;

TEST_F(GetObjectRange, IsSentInDecimalWhateverItIs) {
    m_server.On("GET", "/").Always(Answer::Status(206));
    const auto store = MakeStore();
    const auto rangeOf = [&](std::uint64_t start, std::uint64_t end) {
        unsigned char byte = 0;
        CloudStoreReadObjectContext read;
        read.m_pszBucket = kBucket;
        read.m_pszKey = "k";
        read.m_pBuf = &byte;
        read.m_nReadLen = 1;
        read.m_nRangeStart = start;
        read.m_nRangeEnd = end;
        EXPECT_EQ(store->ReadObject(&read), 0);
        return m_server.Requests().back().Value("range");
    };
    EXPECT_EQ(rangeOf(0, 0), "bytes=0-0");
    EXPECT_EQ(rangeOf(100, 199), "bytes=100-199");
    EXPECT_EQ(rangeOf(5, 3), "bytes=5-3") << "the service judges it";
    EXPECT_EQ(rangeOf(4294967296u, 1099511627776u), "bytes=4294967296-1099511627776");
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(rangeOf(most, most), "bytes=18446744073709551615-18446744073709551615");
}

using GetObjectAnswer = WireTest;

TEST_F(GetObjectAnswer, AShorterBodyThanAskedForGivesItsOwnCount) {
    m_server.Next(Answer::Status(206).Body("end of object"));
    const auto store = MakeStore();
    const ReadResult read = Read(*store, "k", 0, 100);
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.size, 13u);
    EXPECT_EQ(read.buffer, "end of object" + std::string(103, ReadResult::kUntouchedByte));
}

TEST_F(GetObjectAnswer, ALongerBodyThanTheBufferIsCutAtTheLengthAskedFor) {
    m_server.Next(Answer::Status(200).Body(std::string(300000, 'x')));
    m_server.Next(Answer::Status(200).Body("y"));
    const auto store = MakeStore();
    const ReadResult read = Read(*store, "k", 0, 100);
    if (kSdk1_11) {  // which fails a read of so much more than was asked for
        EXPECT_EQ(read.status, StatusOf(Aws::S3::S3Errors::INTERNAL_FAILURE));
        EXPECT_TRUE(read.Untouched());
    } else {
        EXPECT_EQ(read.status, 0);
        EXPECT_EQ(read.size, 100u);
        EXPECT_EQ(read.buffer, std::string(100, 'x') + std::string(16, ReadResult::kUntouchedByte));
    }
    EXPECT_EQ(Read(*store, "k").Delivered(), "y");
}

TEST_F(GetObjectAnswer, AnEmptyBodyIsASuccessOfNoBytes) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    const ReadResult read = Read(*store, "k");
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.size, 0u);
    EXPECT_EQ(read.buffer, std::string(116, ReadResult::kUntouchedByte));
}

TEST_F(GetObjectAnswer, BytesOfAnEarlierReadNeverShowInAShorterOne) {
    m_server.Next(Answer::Status(206).Body(std::string(100, '1')));
    m_server.Next(Answer::Status(206).Body("2"));
    const auto store = MakeStore();
    EXPECT_EQ(Read(*store, "k").Delivered(), std::string(100, '1'));
    const ReadResult read = Read(*store, "k");
    EXPECT_EQ(read.size, 1u);
    EXPECT_EQ(read.buffer, "2" + std::string(115, ReadResult::kUntouchedByte));
}

TEST_F(GetObjectAnswer, AChunkedBodyIsRead) {
    m_server.Next(Answer::Status(200).Body("in several chunks").Chunked(4));
    const auto store = MakeStore();
    const ReadResult read = Read(*store, "k");
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.Delivered(), "in several chunks");
}

TEST_F(GetObjectAnswer, ABodyThatTricklesInIsReadWhole) {
    const Gate gate;
    gate.Open();
    m_server.Next(Answer::Status(200).Body("byte by byte").Trickle(1, gate));
    const auto store = MakeStore();
    EXPECT_EQ(Read(*store, "k").Delivered(), "byte by byte");
    EXPECT_EQ(gate.Reached(), 12);
}

TEST_F(GetObjectAnswer, AFullWorkBufferIsRead) {
    std::string body;
    while (body.size() < 1024 * 1024) {
        body += std::to_string(body.size()) + ' ';
    }
    body.resize(1024 * 1024);
    m_server.Next(Answer::Status(206).Body(body));
    Setup setup;
    setup.buffer = 1024 * 1024;
    const auto store = MakeStore(setup);
    EXPECT_TRUE(Read(*store, "k", 0, body.size()).Delivered() == body);
}

TEST_F(GetObjectAnswer, AMissingKeyGivesItsStatusAndBothLines) {
    m_server.Next(Answer::S3Error(404, "NoSuchKey", "The specified key does not exist."));
    m_server.Next(Answer::Status(206).Body("there"));
    const auto store = MakeStore();
    ExpectReadFailed(Read(*store, "missing"), Aws::S3::S3Errors::NO_SUCH_KEY, "missing",
                     testing::Eq("The specified key does not exist."), "NoSuchKey");
    EXPECT_EQ(Read(*store, "k").Delivered(), "there");
}

TEST_F(GetObjectAnswer, AnErrorDocumentLargerThanTheBufferAskedForIsReadAllTheSame) {
    m_server.Next(Answer::S3Error(404, "NoSuchKey", std::string(3000, 'm')));
    const auto store = MakeStore();
    const ReadResult read = Read(*store, "k", 0, 1);
    EXPECT_EQ(read.status, StatusOf(Aws::S3::S3Errors::NO_SUCH_KEY));
    EXPECT_TRUE(read.Untouched());
}

TEST_F(GetObjectAnswer, ARangeBeyondTheEndGivesTheServicesError) {
    m_server.Next(Answer::S3Error(416, "InvalidRange", "The range is not satisfiable"));
    const auto store = MakeStore();
    ExpectReadFailed(
        Read(*store, "k", 5000), Aws::S3::S3Errors::UNKNOWN, "k",
        testing::Eq("Unable to parse ExceptionName: InvalidRange Message: The range is "
                    "not satisfiable"),
        "InvalidRange");
}

TEST_F(GetObjectRange, AnotherRangeThanAskedForIsAFailureAndDeliversNothing) {
    const std::string part(100, 'x');
    const Answer whole = Answer::Status(200).Body(std::string(300, 'w'));
    const auto store = MakeStore();
    for (const Answer& answer :
         {Answer(whole), Answer(whole).Header("Content-Range", "bytes 0-99/300"),
          Answer::Status(200).Body("whole").Chunked(2),
          Answer::Status(206).Header("Content-Range", "bytes 101-200/300").Body(part),
          Answer::Status(206).Header("Content-Range", "bytes */300").Body(part),
          // nothing tells that these are not its first bytes
          Answer::Status(206).Body(part)}) {
        m_log.Clear();
        m_server.Next(answer);
        ExpectReadFailed(Read(*store, "k", 100, 100), Aws::S3::S3Errors::UNKNOWN, "k",
                         testing::Eq("The answer holds other bytes than the range asked for."));
    }
    EXPECT_TRUE(Waits().empty());
}

TEST_F(GetObjectRange, AnAnswerThatBeginsWhereItShouldIsDelivered) {
    const std::string body(100, 'b');
    const auto store = MakeStore();
    for (const char* range : {"bytes 100-199/300", "bytes 100-199/*", "Bytes 100-199/300"}) {
        for (const int status : {200, 206}) {
            m_server.Next(Answer::Status(status).Header("Content-Range", range).Body(body));
            EXPECT_EQ(Read(*store, "k", 100, 100).Delivered(), body);
        }
    }
    m_server.Next(Answer::Status(200).Body(std::string(300, 'w')));
    EXPECT_EQ(Read(*store, "k", 0, 100).Delivered(), std::string(100, 'w'));
}

TEST_F(GetObjectRange, AnAnswerShorterThanItsRangeIsAFailureAndDeliversNothing) {
    const auto store = MakeStore();
    for (const std::string body : {"", "b", "the first of the bytes"}) {
        m_log.Clear();
        // without a length of its own, a body that was cut ends like a whole one
        m_server.Next(Answer::Status(206)
                          .Header("Content-Range", "bytes 100-199/300")
                          .Body(body)
                          .WithoutLength());
        ExpectReadFailed(Read(*store, "k", 100, 100), Aws::S3::S3Errors::UNKNOWN, "k",
                         testing::Eq("The answer holds fewer bytes than its range."));
    }
    EXPECT_TRUE(Waits().empty());
    m_server.Next(Answer::Status(206)
                      .Header("Content-Range", "bytes 100-121/122")
                      .Body("the last of the object")
                      .WithoutLength());
    EXPECT_EQ(Read(*store, "k", 100, 100).Delivered(), "the last of the object");
}

TEST_F(GetObjectRange, AnEmptyObjectInPlaceOfAnyRangeIsBelieved) {
    const auto store = MakeStore();
    m_server.Next(Answer::Status(200).Body(""));
    EXPECT_EQ(Read(*store, "k", 100, 100).Delivered(), "");
}

TEST_F(GetObjectRange, AReadOfNoLengthAsksAllTheSameAndDeliversNothing) {
    m_server.Next(Answer::Status(206).Header("Content-Range", "bytes 0-0/5").Body("x"));
    const auto store = MakeStore();
    unsigned char byte = 'u';
    CloudStoreReadObjectContext read;
    read.m_pszBucket = kBucket;
    read.m_pszKey = "k";
    read.m_pBuf = &byte;
    read.m_nReadLen = 0;
    read.m_nReadSize = 7;
    EXPECT_EQ(store->ReadObject(&read), 0);
    EXPECT_EQ(read.m_nReadSize, 0u);
    EXPECT_EQ(byte, 'u');
    EXPECT_EQ(OnlyRequest().Value("range"), "bytes=0-0");
    EXPECT_EQ(store->GetRequestCount(), 1u);
    EXPECT_THAT(Lines(), testing::IsEmpty());
}

TEST_F(GetObjectRange, TheWholeObjectInPlaceOfARangeThatIsNoneIsNoFailure) {
    const auto store = MakeStore();
    m_server.Next(Answer::Status(200).Body("whole"));
    const ReadResult read = Read(*store, "k", 100, 0);  // bytes=100-99
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.size, 0u);
}

}  // namespace
}  // namespace Mirqos::Test
