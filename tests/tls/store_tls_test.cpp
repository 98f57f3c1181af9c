#include <aws/s3/S3Errors.h>
#include <gtest/gtest.h>
#include <mirqos/mirqos.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "sdk/core/Seam.h"
#include "store/AwsS3Store.h"
#include "tests/tls/TlsServer.h"

namespace Mirqos::Test {
namespace {

/// Stores that trust the test authority, and speak TLS as they do to anybody.
class StoreTls : public testing::Test {
protected:
    StoreTls() {
        TheSeam().trustFile = MIRQOS_TLS_FOLDER "/ca.pem";
        TheSeam().sleep = [](std::chrono::milliseconds) {};
    }
    ~StoreTls() override { TheSeam() = Seam(); }

    static std::int32_t WriteTo(const std::string& name) {
        EXPECT_NE(PortOf(name), 0) << "the test server is not running";
        const std::string endpoint = "localhost:" + std::to_string(PortOf(name));
        CloudStoreConfigInfo config;
        config.m_pszEndPoint = endpoint.c_str();
        AwsS3Store store;
        EXPECT_EQ(store.Init(&config), 0);
        const unsigned char byte = 'v';
        CloudStoreWriteObjectContext write;
        write.m_pszBucket = "bucket";
        write.m_pszKey = "key";
        write.m_pBuf = &byte;
        write.m_nBufLen = 1;
        return store.WriteObject(&write);
    }

private:
    const MIRQOSEngineStarter m_engine{true, CloudStoreContext()};
};

TEST_F(StoreTls, ATrustedServerIsWrittenTo) {
    const int before = CountsOf("trusted").at("requests");
    EXPECT_EQ(WriteTo("trusted"), 0);
    EXPECT_EQ(CountsOf("trusted").at("requests"), before + 1);
}

TEST_F(StoreTls, AServerThatCannotBeTrustedGetsNoRequest) {
    for (const char* const name : {"untrusted", "misnamed"}) {
        const std::map<std::string, int> before = CountsOf(name);
        EXPECT_EQ(WriteTo(name), static_cast<std::int32_t>(Aws::S3::S3Errors::NETWORK_CONNECTION));
        const std::map<std::string, int> after = CountsOf(name);
        EXPECT_GT(after.at("connections"), before.at("connections")) << name;
        EXPECT_EQ(after.at("requests"), before.at("requests")) << name;
    }
}

}  // namespace
}  // namespace Mirqos::Test
