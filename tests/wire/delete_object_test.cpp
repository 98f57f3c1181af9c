#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;

class DeleteObject : public WireTest, public testing::WithParamInterface<Style> {};

INSTANTIATE_TEST_SUITE_P(Styles, DeleteObject, testing::Values(Style::path, Style::virtualHost),
                         [](const auto& info) {
                             return info.param == Style::path ? "Path" : "VirtualHost";
                         });

TEST_P(DeleteObject, SendsExactlyThisRequest) {
    m_server.Next(Answer::Status(204));
    const auto store = MakeStore(In(GetParam()));
    EXPECT_EQ(Delete(*store, "folder/file.bin"), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "DELETE");
    if (GetParam() == Style::path) {
        EXPECT_EQ(request.target, "/the-bucket/folder/file.bin");
        EXPECT_EQ(request.Value("host"), kEndpoint);
    } else {
        EXPECT_EQ(request.target, "/folder/file.bin");
        EXPECT_EQ(request.Value("host"), kVirtualHost);
    }
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(request.Value("x-amz-content-sha256"), Sha256Of(""));
    EXPECT_TRUE(IsAmzDate(request.Value("x-amz-date"))) << request.Value("x-amz-date");
    EXPECT_EQ(SignedHeadersOf(request), "host;x-amz-content-sha256;x-amz-date");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(request), "");
    EXPECT_THAT(Lines(),
                ElementsAre("Succeed to delete object folder/file.bin in bucket the-bucket."));
    EXPECT_EQ(store->GetRequestCount(), 0u) << "it is not counted";
}

using DeleteObjectAnswer = WireTest;

TEST_F(DeleteObjectAnswer, ARefusalGivesItsStatusAndBothLines) {
    m_server.Next(Answer::S3Error(403, "AccessDenied", "Access Denied"));
    m_server.Next(Answer::Status(204));
    const auto store = MakeStore();
    const std::int32_t status = Delete(*store, "k@x");
    EXPECT_EQ(status, StatusOf(Aws::S3::S3Errors::ACCESS_DENIED));
    EXPECT_THAT(Lines(), ElementsAre("Failed to delete object k@x in bucket the-bucket. EC:" +
                                         std::to_string(status) + ".",
                                     "Access Denied"));
    EXPECT_EQ(Delete(*store, "k@x"), 0);
}

TEST_F(DeleteObjectAnswer, ASuccessWithAPageForPeopleIsAFailure) {
    m_server.Next(Answer::Status(200)
                      .Header("Content-Type", "text/html")
                      .Body("<!DOCTYPE html><html><body>Log in first<br></body></html>"));
    m_server.Next(Answer::Status(204));
    const auto store = MakeStore();
    EXPECT_EQ(Delete(*store, "k"), StatusOf(Aws::S3::S3Errors::UNKNOWN));
    EXPECT_EQ(Lines().size(), 2u);
    EXPECT_EQ(Delete(*store, "k"), 0);
}

}  // namespace
}  // namespace Mirqos::Test
