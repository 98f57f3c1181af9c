#include "sdk/core/Seam.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

class Signature : public WireTest {
protected:
    RecordedRequest SignedPut() {
        m_server.Next(Answer::Status(200));
        const auto store = MakeStore();
        EXPECT_EQ(Write(*store, "a key", "a body"), 0);
        return OnlyRequest();
    }
};

// The check itself has to notice what it is there for.
TEST_F(Signature, TheCheckNoticesEveryChange) {
    const RecordedRequest request = SignedPut();
    ASSERT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_NE(SignatureProblem(request, kKeyId, "another secret", kRegion), "");
    EXPECT_NE(SignatureProblem(request, "another id", kSecret, kRegion), "");
    EXPECT_NE(SignatureProblem(request, kKeyId, kSecret, "us-east-1"), "");
    RecordedRequest changed = request;
    changed.target += "x";
    EXPECT_NE(SignatureProblem(changed, kKeyId, kSecret, kRegion), "");
    changed = request;
    changed.method = "POST";
    EXPECT_NE(SignatureProblem(changed, kKeyId, kSecret, kRegion), "");
    changed = request;
    changed.body += "x";
    EXPECT_NE(SignatureProblem(changed, kKeyId, kSecret, kRegion), "");
    for (std::size_t i = 0; i < request.headers.size(); ++i) {
        changed = request;
        changed.headers[i].second += "x";
        const std::string& name = request.headers[i].first;
        const bool unsignedOne = name == "User-Agent" || name == "Connection" || name == "Accept" ||
                                 (!kBundledSdk && (name == "user-agent" || name == "Upgrade" ||
                                                   name == "HTTP2-Settings"));
        EXPECT_EQ(SignatureProblem(changed, kKeyId, kSecret, kRegion).empty(), unsignedOne) << name;
    }
}

TEST_F(Signature, FollowsTheClock) {
    TheSeam().now = [] { return std::chrono::system_clock::from_time_t(1700000000); };
    const RecordedRequest request = SignedPut();
    EXPECT_EQ(request.Value("x-amz-date"), "20231114T221320Z");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
}

TEST_F(Signature, WithoutCredentialsRequestsGoUnsigned) {
    m_server.Next(Answer::Status(200));
    CloudStoreConfigInfo config;
    config.m_pszEndPoint = kEndpoint;
    config.m_bUseHttps = 0;
    AwsS3Store store;
    ASSERT_EQ(store.Init(&config), 0);
    EXPECT_EQ(Write(store, "k", "v"), 0);
    EXPECT_EQ(OnlyRequest().Header("authorization"), nullptr);
}

}  // namespace
}  // namespace Mirqos::Test
