#include "tests/service/S3Server.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>

namespace Mirqos::Test {

namespace {

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

std::map<std::string, std::string> ReadEnvFile(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("no S3 server: cannot read '" + path +
                                 "'; run the tests with ctest, which starts one");
    }
    std::map<std::string, std::string> values;
    for (std::string line; std::getline(file, line);) {
        const auto equals = line.find('=');
        if (equals != std::string::npos) {
            values[line.substr(0, equals)] = line.substr(equals + 1);
        }
    }
    return values;
}

S3Server FindS3Server() {
    S3Server server{Variable("MIRQOS_S3_ENDPOINT"), Variable("MIRQOS_S3_REGION"),
                    Variable("MIRQOS_S3_ACCESS_KEY"), Variable("MIRQOS_S3_SECRET_KEY")};
    if (server.endpoint.empty()) {
        auto values = ReadEnvFile(Variable("MIRQOS_S3_ENV"));
        server = {values["MIRQOS_S3_ENDPOINT"], values["MIRQOS_S3_REGION"],
                  values["MIRQOS_S3_ACCESS_KEY"], values["MIRQOS_S3_SECRET_KEY"]};
    }
    if (server.endpoint.empty() || server.accessKey.empty() || server.secretKey.empty()) {
        throw std::runtime_error("no S3 server: its endpoint or its keys are not given");
    }
    return server;
}

}  // namespace

const S3Server& TheS3Server() {
    static const S3Server server = FindS3Server();
    return server;
}

CloudStoreConfigInfo ConfigFor(const std::string& bucket) {
    const S3Server& server = TheS3Server();
    CloudStoreConfigInfo config;
    config.m_pszRegion = server.region.c_str();
    config.m_pszBucket = bucket.c_str();
    config.m_pszAccessKeyId = server.accessKey.c_str();
    config.m_pszSecretKey = server.secretKey.c_str();
    config.m_pszEndPoint = server.endpoint.c_str();
    config.m_bUseHttps = 0;
    return config;
}

std::string NewBucketName() {
    static const std::uint64_t process = [] {
        std::random_device random;
        return (std::uint64_t{random()} << 32) | random();
    }();
    static std::atomic<int> count{0};
    std::ostringstream name;
    name << "test-" << std::hex << process << "-" << std::dec << ++count;
    return name.str();
}

}  // namespace Mirqos::Test
