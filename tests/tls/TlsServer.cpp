#include "tests/tls/TlsServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>

#include "sdk/core/http/Transport.h"
#include "tests/support/HttpExchange.h"

namespace Mirqos::Test {

std::uint16_t PortOf(const std::string& name) {
    std::ifstream ports(MIRQOS_TLS_FOLDER "/ports");
    std::string each;
    std::uint16_t port = 0;
    while (ports >> each >> port) {
        if (each == name) {
            return port;
        }
    }
    return 0;
}

std::map<std::string, int> CountsOf(const std::string& name) {
    const Http::Limits ample{std::chrono::seconds(60), std::chrono::seconds(60)};
    KeptAnswer answer;
    const Http::Result result = Http::MakeTransport({})->Exchange(
        LoopbackRequest(PortOf("control"), "GET", "/" + name), ample, answer);
    EXPECT_EQ(result.failure, Http::Failure::none) << result.message;
    std::map<std::string, int> counts;
    std::istringstream words(answer.body);
    std::string word;
    while (words >> word) {
        const std::size_t equals = word.find('=');
        counts[word.substr(0, equals)] = std::stoi(word.substr(equals + 1));
    }
    return counts;
}

}  // namespace Mirqos::Test
