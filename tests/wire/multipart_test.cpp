#include <algorithm>
#include <regex>
#include <utility>

#include "tests/support/StoreTestAccess.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

class MultiPart : public WireTest {
protected:
    static constexpr char kUpload[] = "the upload+id/1";
    static constexpr char kUploadInQuery[] = "uploadId=the%20upload%2Bid%2F1";

    static Answer Opened(const std::string& id) {
        return Answer::Status(200).Body("<InitiateMultipartUploadResult><UploadId>" + id +
                                        "</UploadId></InitiateMultipartUploadResult>");
    }
    static Answer Completed() {
        return Answer::Status(200).Body(
            "<CompleteMultipartUploadResult><ETag>\"whole\"</ETag></"
            "CompleteMultipartUploadResult>");
    }
    static Answer Taken(const std::string& eTag) {
        return Answer::Status(200).Header("ETag", eTag);
    }
    static Answer CopyTaken(const std::string& eTag) {
        return Answer::Status(200).Body("<CopyPartResult><ETag>" + eTag +
                                        "</ETag></CopyPartResult>");
    }

    static std::int32_t Init(MIRQOSInterface& store, CloudStoreInitMultiPartUploadOutcome& outcome,
                             const char* key = "k") {
        CloudStoreInitMultiPartUploadContext init;
        init.m_pszBucket = kBucket;
        init.m_pszKey = key;
        return store.InitMultiPartUpload(&init, &outcome);
    }
    /// Opens an upload with the id kUpload; its request is the first the server has seen.
    void Open(MIRQOSInterface& store) {
        m_server.Next(Opened(kUpload));
        CloudStoreInitMultiPartUploadOutcome outcome;
        ASSERT_EQ(Init(store, outcome), 0);
        ASSERT_STREQ(outcome.m_szUploadId, kUpload);
        m_log.Clear();
    }
    static std::int32_t Send(MIRQOSInterface& store, std::uint64_t number, const std::string& bytes,
                             const char* key = "k", const char* upload = kUpload) {
        CloudStoreMultiPartUploadContext part;
        part.m_pszBucket = kBucket;
        part.m_pszKey = key;
        part.m_pszUploadId = upload;
        part.m_nPartNumber = number;
        part.m_pBuf = reinterpret_cast<const unsigned char*>(bytes.data());
        part.m_nBufLen = static_cast<std::int32_t>(bytes.size());
        part.m_bLastPart = false;
        return store.MultiPartUpload(&part);
    }
    static std::int32_t CopyPart(MIRQOSInterface& store, std::uint64_t number, std::uint64_t first,
                                 std::uint64_t last, const char* upload = kUpload) {
        CloudStoreMultiPartCopyContext copy;
        copy.m_pszBucket = kBucket;
        copy.m_pszKey = "k";
        copy.m_pszUploadId = upload;
        copy.m_pszCopySource = "source-bucket/a folder/s+1";
        copy.m_nRangeStart = first;
        copy.m_nRangeEnd = last;
        copy.m_nPartNumber = number;
        return store.MultiPartCopy(&copy);
    }
    static CloudStoreFinishMultiPartUploadContext Finished(std::int32_t parts,
                                                           const char* upload = kUpload,
                                                           const char* key = "k") {
        CloudStoreFinishMultiPartUploadContext finish;
        finish.m_pszBucket = kBucket;
        finish.m_pszKey = key;
        finish.m_pszUploadId = upload;
        finish.m_nPartCount = parts;
        return finish;
    }
    static std::int32_t Finish(MIRQOSInterface& store, std::int32_t parts,
                               const char* upload = kUpload, const char* key = "k") {
        auto finish = Finished(parts, upload, key);
        return store.FinishMultiPartUpload(&finish);
    }
    static std::int32_t Abort(MIRQOSInterface& store, const char* upload = kUpload) {
        CloudStoreAbortMultiPartUploadContext abort;
        abort.m_pszBucket = kBucket;
        abort.m_pszKey = "k";
        abort.m_pszUploadId = upload;
        return store.AbortMultiPartUpload(&abort);
    }
    static std::vector<int> StatusesOfRefusals() {
        return kNoticesEmbeddedErrors ? std::vector<int>{403, 200} : std::vector<int>{403};
    }
    static std::string PartList(const std::vector<std::string>& eTags) {
        std::string text =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><CompleteMultipartUpload "
            "xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\">";
        int number = 0;
        for (const std::string& eTag : eTags) {
            const std::string escaped =
                std::regex_replace(eTag, std::regex("\""), kBundledSdk ? "&quot;" : "\"");
            text += "<Part><ETag>" + escaped + "</ETag><PartNumber>" + std::to_string(++number) +
                    "</PartNumber></Part>";
        }
        return text + "</CompleteMultipartUpload>";
    }
    RecordedRequest Last() const { return m_server.Requests().back(); }
};

TEST_F(MultiPart, OpeningSendsExactlyThisRequest) {
    m_server.Next(Opened(kUpload));
    const auto store = MakeStore();
    CloudStoreInitMultiPartUploadOutcome outcome;
    EXPECT_EQ(Init(*store, outcome, "a folder/k"), 0);
    EXPECT_STREQ(outcome.m_szUploadId, kUpload);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/the-bucket/a%20folder/k?uploads");
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(request), "");
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(MultiPart, ARefusedOpeningGivesItsStatusAndBothLinesAndNoId) {
    m_server.Next(Answer::S3Error(403, "AccessDenied", "No"));
    const auto store = MakeStore();
    CloudStoreInitMultiPartUploadOutcome outcome;
    std::fill(std::begin(outcome.m_szUploadId), std::end(outcome.m_szUploadId), '#');
    EXPECT_EQ(Init(*store, outcome), 15);
    EXPECT_EQ(outcome.m_szUploadId[0], '#');
    EXPECT_THAT(Lines(), ElementsAre("Init multi-part upload for:[eu-central-1:the-bucket:k] "
                                     "failed.EC:[15].",
                                     "Init Error Message:[No]."));
}

TEST_F(MultiPart, AnIdOf259CharactersFits) {
    const std::string id(259, 'i');
    m_server.Next(Opened(id));
    const auto store = MakeStore();
    CloudStoreInitMultiPartUploadOutcome outcome;
    EXPECT_EQ(Init(*store, outcome), 0);
    EXPECT_EQ(outcome.m_szUploadId, id);
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 0, id.c_str()), 0);
}

TEST_F(MultiPart, AnIdThatDoesNotFitEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    m_server.Next(Opened(std::string(260, 'i')));
    const auto store = MakeStore();
    CloudStoreInitMultiPartUploadOutcome outcome;
    EXPECT_DEATH(Init(*store, outcome), "a text does not fit");
}

TEST_F(MultiPart, APartSendsExactlyThisRequest) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(Taken("\"e1\""));
    EXPECT_EQ(Send(*store, 7, "part seven"), 0);
    const RecordedRequest request = Last();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, std::string("/the-bucket/k?partNumber=7&") + kUploadInQuery);
    EXPECT_EQ(request.body, "part seven");
    EXPECT_EQ(request.Value("content-length"), "10");
    EXPECT_EQ(request.Value("x-amz-content-sha256"), Sha256Of("part seven"));
    EXPECT_EQ(request.Value("content-md5"), Md5OfUploads("part seven"));
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(request), "");
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_EQ(store->GetRequestCount(), 2u);
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 0), 0);
}

TEST_F(MultiPart, PartsSentOutOfOrderAreCompletedInOrderWithTheirOwnTags) {
    const auto store = MakeStore();
    Open(*store);
    for (const int number : {3, 1, 2}) {
        m_server.Next(Taken("\"e" + std::to_string(number) + "\""));
        EXPECT_EQ(Send(*store, static_cast<std::uint64_t>(number), "x"), 0);
    }
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 3), 0);
    EXPECT_EQ(Last().method, "POST");
    EXPECT_EQ(Last().target, std::string("/the-bucket/k?") + kUploadInQuery);
    EXPECT_EQ(XmlOf(Last()), PartList({"\"e1\"", "\"e2\"", "\"e3\""}));
    EXPECT_EQ(SignatureProblem(Last(), kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(Last()), "");
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_EQ(store->GetRequestCount(), 5u);
}

TEST_F(MultiPart, APartSentTwiceKeepsTheTagOfTheFirst) {
    const auto store = MakeStore();
    Open(*store);
    for (const char* eTag : {"first", "second"}) {
        m_server.Next(Taken(eTag));
        EXPECT_EQ(Send(*store, 1, "x"), 0);
    }
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 1), 0);
    EXPECT_EQ(XmlOf(Last()), PartList({"first"}));
}

TEST_F(MultiPart, APartCopiedTwiceKeepsTheTagOfTheFirst) {
    const auto store = MakeStore();
    Open(*store);
    for (const char* eTag : {"first", "second"}) {
        m_server.Next(CopyTaken(eTag));
        EXPECT_EQ(CopyPart(*store, 1, 0, 9), 0);
    }
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 1), 0);
    EXPECT_EQ(XmlOf(Last()), PartList({"first"}));
}

TEST_F(MultiPart, AnUploadOpenedAgainUnderItsIdHasNoParts) {
    const auto store = MakeStore();
    Open(*store);
    for (const std::uint64_t number : {1u, 2u}) {
        m_server.Next(Taken("e" + std::to_string(number)));
        EXPECT_EQ(Send(*store, number, "x"), 0);
    }
    Open(*store);
    m_server.Next(Taken("again"));
    EXPECT_EQ(Send(*store, 2, "x"), 0);
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 2), 0);
    EXPECT_EQ(XmlOf(Last()), PartList({"", "again"}));
    EXPECT_EQ(Finish(*store, 2), -1) << "it was one upload";
}

TEST_F(MultiPart, OpeningsAndFinishesAreCountedWhateverBecomesOfThem) {
    const auto store = MakeStore();
    const auto counts = [&] {
        return std::make_pair(StoreTestAccess::InitMultiPartCount(*store),
                              StoreTestAccess::FinishMultiPartCount(*store));
    };
    EXPECT_THAT(counts(), Pair(0u, 0u));
    m_server.Next(Answer::S3Error(403, "AccessDenied", "No"));
    CloudStoreInitMultiPartUploadOutcome outcome;
    EXPECT_NE(Init(*store, outcome), 0);
    EXPECT_THAT(counts(), Pair(1u, 0u));
    Open(*store);
    EXPECT_THAT(counts(), Pair(2u, 0u));
    m_server.Next(Taken("e1"));
    EXPECT_EQ(Send(*store, 1, "x"), 0);
    m_server.Next(CopyTaken("e2"));
    EXPECT_EQ(CopyPart(*store, 2, 0, 0), 0);
    m_server.Next(Answer::Status(204));
    EXPECT_EQ(Abort(*store), 0);
    EXPECT_THAT(counts(), Pair(2u, 0u));
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 2), 0);
    EXPECT_THAT(counts(), Pair(2u, 1u));
    Open(*store);
    m_server.Next(Completed());
    auto finish = Finished(0);
    EXPECT_EQ(store->FinishMultiPartUploadAsync(&finish), 0);
    EXPECT_THAT(counts(), Pair(3u, 2u));
    EXPECT_EQ(Finish(*store, 0), -1);
    EXPECT_EQ(store->FinishMultiPartUploadAsync(&finish), -1);
    EXPECT_THAT(counts(), Pair(3u, 4u));
    EXPECT_EQ(store->GetRequestCount(), 10u);
}

TEST_F(MultiPart, AFailedPartRecordsNothingAndItsRetryCounts) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(Answer::S3Error(403, "AccessDenied", "No"));
    EXPECT_EQ(Send(*store, 1, "12345"), 15);
    EXPECT_THAT(Lines(), ElementsAre("Part Upload:[eu-central-1:the-bucket:k:1:5] failed.",
                                     "Part Upload:[No]."));
    m_server.Next(Taken("again"));
    EXPECT_EQ(Send(*store, 1, "12345"), 0);
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 1), 0);
    EXPECT_EQ(XmlOf(Last()), PartList({"again"}));
}

TEST_F(MultiPart, ACopiedPartSendsExactlyThisRequest) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(CopyTaken("\"copied\""));
    EXPECT_EQ(CopyPart(*store, 1, 0, 5242879), 0);
    const RecordedRequest request = Last();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, std::string("/the-bucket/k?partNumber=1&") + kUploadInQuery);
    EXPECT_EQ(request.Value("x-amz-copy-source"), "source-bucket/a%20folder/s%2B1");
    EXPECT_EQ(request.Value("x-amz-copy-source-range"), "bytes=0-5242879");
    EXPECT_THAT(SignedHeadersOf(request), HasSubstr("x-amz-copy-source;x-amz-copy-source-range"));
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 1), 0);
    EXPECT_EQ(XmlOf(Last()), PartList({"\"copied\""}));
}

TEST_F(MultiPart, ACopiedRangeOfOneByteNamesItTwice) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(CopyTaken("e"));
    EXPECT_EQ(CopyPart(*store, 1, 0, 0), 0);
    EXPECT_EQ(Last().Value("x-amz-copy-source-range"), "bytes=0-0");
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 0), 0);
}

TEST_F(MultiPart, ARefusedCopyGivesItsStatusAndBothLinesAlsoUnderStatus200) {
    const auto store = MakeStore();
    Open(*store);
    for (const int httpStatus : StatusesOfRefusals()) {
        m_log.Clear();
        m_server.Next(Answer::S3Error(httpStatus, "AccessDenied", "No"));
        EXPECT_EQ(CopyPart(*store, 2, 10, 19), 15);
        EXPECT_THAT(Lines(),
                    ElementsAre("Part Upload:[eu-central-1:the-bucket:k:2] "
                                "Src[source-bucket/a folder/s+1] Range[bytes=10-19] failed.",
                                "Part Upload:[No]."));
    }
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 0), 0);
}

TEST_F(MultiPart, AFinishOfNoPartsSendsAnEmptyListAndForgetsTheUpload) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(Answer::S3Error(400, "MalformedXML", "Empty"));
    EXPECT_EQ(Finish(*store, 0), 100);
    EXPECT_EQ(XmlOf(Last()), kBundledSdk ? PartList({}) : "");
    EXPECT_EQ(Finish(*store, 0), -1) << "the upload is known no more";
}

TEST_F(MultiPart, PartsThatWereNeverRecordedGoWithEmptyTags) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(Taken("e2"));
    EXPECT_EQ(Send(*store, 2, "x"), 0);
    m_server.Next(Answer::S3Error(400, "InvalidPart", "Missing"));
    EXPECT_NE(Finish(*store, 3), 0);
    EXPECT_EQ(XmlOf(Last()), PartList({"", "e2", ""}));
}

TEST_F(MultiPart, AFailedFinishGivesItsStatusAndBothLinesAlsoUnderStatus200) {
    for (const int httpStatus : StatusesOfRefusals()) {
        const auto store = MakeStore();
        Open(*store);
        m_server.Next(Answer::S3Error(httpStatus, "AccessDenied", "No"));
        EXPECT_EQ(Finish(*store, 1), 15);
        EXPECT_THAT(Lines(), ElementsAre("Complete Multi-Part [eu-central-1:the-bucket:k:the "
                                         "upload+id/1:1] failed.",
                                         "Reason:[No],EC:[15]."));
    }
}

TEST_F(MultiPart, APartThatIsResetOrTurnedAwayIsSentAgainWhole) {
    const auto store = MakeStore();
    Open(*store);
    std::string bytes;
    for (int i = 0; i < 300000; ++i) {
        bytes += static_cast<char>((i * 31 + i / 251) % 256);
    }
    m_server.Next(Taken("e").Reset(Place::RequestByte(100000)));
    m_server.Next(Answer::S3Error(503, "SlowDown", "Slower"));
    m_server.Next(Taken("e").Reset(Place::AnswerByte(10)));
    m_server.Next(Taken("e"));
    EXPECT_EQ(Send(*store, 1, bytes), 0);
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 5u);
    EXPECT_FALSE(requests[1].complete);
    EXPECT_TRUE(bytes.compare(0, requests[1].body.size(), requests[1].body) == 0);
    for (std::size_t attempt = 2; attempt <= 4; ++attempt) {
        EXPECT_TRUE(requests[attempt].complete && requests[attempt].body == bytes) << attempt;
    }
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 1), 0);
    EXPECT_EQ(XmlOf(Last()), PartList({"e"}));
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(MultiPart, OfThePartNumberTheLow32BitsCount) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(Taken("e2"));
    EXPECT_EQ(Send(*store, (std::uint64_t{1} << 32) + 2, "x"), 0);
    EXPECT_THAT(Last().target, HasSubstr("partNumber=2&"));
    m_server.Next(CopyTaken("e3"));
    EXPECT_EQ(CopyPart(*store, (std::uint64_t{7} << 32) + 3, 0, 9), 0);
    EXPECT_THAT(Last().target, HasSubstr("partNumber=3&"));
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 3), 0);
    EXPECT_EQ(XmlOf(Last()), PartList({"", "e2", "e3"}));
}

TEST_F(MultiPart, AnEmptyPartIsSentAsNoBytes) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(Taken("e"));
    EXPECT_EQ(Send(*store, 1, ""), 0);
    EXPECT_EQ(Last().Value("content-length"), "0");
    EXPECT_EQ(Last().body, "");
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 1), 0);
}

TEST_F(MultiPart, ARangeBeyond32BitsIsNamedInFull) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(CopyTaken("e"));
    EXPECT_EQ(CopyPart(*store, 1, 5368709120u, 18446744073709551615u), 0);
    EXPECT_EQ(Last().Value("x-amz-copy-source-range"), "bytes=5368709120-18446744073709551615");
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 1), 0);
}

TEST_F(MultiPart, AnUnknownUploadIsReportedAndNothingIsSent) {
    const auto store = MakeStore();
    EXPECT_EQ(Send(*store, 1, "x"), -1);
    EXPECT_EQ(CopyPart(*store, 1, 0, 0), -1);
    EXPECT_EQ(Finish(*store, 1), -1);
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_THAT(Lines(), ElementsAre("AwsS3Store::MultiPartUpload unknown error.",
                                     "AwsS3Store::MultiPartCopy unknown error.",
                                     "AwsS3Store::FinishMultiPartUpload unknown error."));
    EXPECT_EQ(store->GetRequestCount(), 3u);
}

TEST_F(MultiPart, AnAbortLeavesTheUploadKnownAndOnlyAFinishForgetsIt) {
    const auto store = MakeStore();
    Open(*store);
    m_server.Next(Answer::Status(204));
    EXPECT_EQ(Abort(*store), 0);
    EXPECT_EQ(Last().method, "DELETE");
    EXPECT_EQ(Last().target, std::string("/the-bucket/k?") + kUploadInQuery);
    EXPECT_EQ(Last().body, "");
    EXPECT_EQ(UnknownHeaders(Last()), "");
    EXPECT_THAT(Lines(), IsEmpty());
    m_server.Next(Taken("e1"));
    EXPECT_EQ(Send(*store, 1, "x"), 0) << "the service decides";
    m_server.Next(Answer::S3Error(404, "NoSuchUpload", "Gone"));
    EXPECT_EQ(Finish(*store, 1), StatusOf(Aws::S3::S3Errors::NO_SUCH_UPLOAD));
}

TEST_F(MultiPart, AnAbortWithoutAnIdIsRefusedBecauseItWouldDeleteTheObject) {
    const auto store = MakeStore();
    EXPECT_EQ(Abort(*store, ""), StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER));
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_THAT(Lines(), ElementsAre(HasSubstr("Abort Multi-Upload:["),
                                     "Abort message:[Missing required field [UploadId]],"));
}

TEST_F(MultiPart, AnOpeningAnsweredWithoutAnIdHasFailed) {
    m_server.Next(Opened(""));
    const auto store = MakeStore();
    CloudStoreInitMultiPartUploadOutcome outcome;
    EXPECT_EQ(Init(*store, outcome), StatusOf(Aws::S3::S3Errors::UNKNOWN));
    EXPECT_THAT(Lines(), ElementsAre(HasSubstr(":k] failed.EC:[100]."),
                                     "Init Error Message:[The answer holds no upload id.]."));
    EXPECT_EQ(Send(*store, 1, "a part", "k", ""), -1) << "no such upload is known";
    EXPECT_EQ(m_server.Requests().size(), 1u);
}

TEST_F(MultiPart, ARefusedAbortGivesItsStatusAndBothLines) {
    const auto store = MakeStore();
    m_server.Next(Answer::S3Error(404, "NoSuchUpload", "Gone"));
    EXPECT_EQ(Abort(*store), StatusOf(Aws::S3::S3Errors::NO_SUCH_UPLOAD));
    EXPECT_THAT(Lines(), ElementsAre("Abort Multi-Upload:[eu-central-1:the-bucket:k:the "
                                     "upload+id/1] failed.",
                                     "Abort message:[Gone],"));
}

TEST_F(MultiPart, KeysTakeTheSubstitutionAndLinesShowThemAsGiven) {
    Setup setup;
    setup.provider = 5;
    const auto store = MakeStore(setup);
    m_server.Next(Opened(kUpload));
    CloudStoreInitMultiPartUploadOutcome outcome;
    EXPECT_EQ(Init(*store, outcome, "a@b"), 0);
    m_server.Next(Answer::S3Error(403, "AccessDenied", "No"));
    EXPECT_EQ(Send(*store, 1, "x", "a@b"), 15);
    EXPECT_EQ(Lines().front(), "Part Upload:[eu-central-1:the-bucket:a@b:1:1] failed.");
    m_server.Next(Completed());
    EXPECT_EQ(Finish(*store, 0, kUpload, "a@b"), 0);
    for (const RecordedRequest& request : m_server.Requests()) {
        EXPECT_EQ(request.Path(), "/the-bucket/a%2Bb");
    }
}

}  // namespace
}  // namespace Mirqos::Test
