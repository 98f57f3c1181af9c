#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Gate.h"
#include "tests/wire/AsyncReadTest.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;

/// One read of the bytes 5 to 7, for its lines: those of the host's thread, which starts it and
/// waits for it, and those of the store's one thread, which answers it.
class AsyncReadLines : public AsyncRead {
protected:
    AsyncReadLines() : m_store(StoreWithThreads(1)), m_read(5, 3, "a folder/k") {
        m_server.Next(Bytes("abc", 5).Wait(Place::AnswerByte(0), m_answer));
        m_log.Clear();
        EXPECT_EQ(m_store->ReadObjectAsync(&m_read.context), 0);
    }
    void AwaitLine(const char* part) const {
        while (m_log.CountContaining(part) == 0) {
            std::this_thread::yield();
        }
    }
    std::string Copied() const {
        return "[AwsS3Store::HandleAsyncReadFunc]. pBuf:[" +
               std::to_string(reinterpret_cast<std::intptr_t>(m_read.context.m_pBuf)) +
               "] len:[3] contentLen:[3] availSize=[3].";
    }

    Gate m_answer;
    std::unique_ptr<AwsS3Store> m_store;
    OneRead m_read;
};

TEST_F(AsyncReadLines, OfAReadAnsweredBeforeTheWait) {
    m_answer.Open();
    AwaitLine("HandleAsyncReadFunc]. leave.");
    EXPECT_EQ(m_store->WaitForReadObjectAsync(&m_read.context), 0);
    auto lines = Lines();
    // The answer's buffer is made while the host still starts the read, or later.
    const auto buffer =
        std::find(lines.begin(), lines.end(), "AwsS3Store::ReadObjectAsync lambda enter.");
    ASSERT_NE(buffer, lines.end());
    EXPECT_NE(buffer, lines.begin());
    EXPECT_LT(buffer,
              std::find(lines.begin(), lines.end(), "[AwsS3Store::HandleAsyncReadFunc]. enter."));
    lines.erase(buffer);
    EXPECT_THAT(
        lines,
        ElementsAre(
            "AwsS3Store::ReadObjectAsync enter.",
            "AwsS3Store::ReadObjectAsync Leave. GetRange = [bytes=5-7], read len = [3]",
            "[AwsS3Store::HandleAsyncReadFunc]. enter.",
            "[AwsS3Store::HandleAsyncReadFunc]. enter. Key: a folder/k Context_Start = 5", Copied(),
            "[AwsS3Store::HandleAsyncReadFunc]. leave. Total Request= 1 , complete = 1, EC = 0",
            "AwsS3Store::WaitForReadObjectAsync enter. key = [a folder/k], read len = [3]",
            "AwsS3Store::WaitForReadObjectAsync no need wait."));
}

TEST_F(AsyncReadLines, OfAReadAnsweredDuringTheWait) {
    std::thread host([&] { EXPECT_EQ(m_store->WaitForReadObjectAsync(&m_read.context), 0); });
    AwaitLine("cv wait start.");
    m_answer.Open();
    host.join();
    AwaitLine("HandleAsyncReadFunc]. leave.");
    const auto lines = Lines();
    std::vector<std::string> ofHost;
    std::vector<std::string> ofStore;
    for (const std::string& line : lines) {
        const bool ofAnswer = line[0] == '[' || line.find("lambda") != std::string::npos;
        (ofAnswer ? ofStore : ofHost).push_back(line);
    }
    EXPECT_THAT(
        ofHost,
        ElementsAre("AwsS3Store::ReadObjectAsync enter.",
                    "AwsS3Store::ReadObjectAsync Leave. GetRange = [bytes=5-7], read len = [3]",
                    "AwsS3Store::WaitForReadObjectAsync enter. key = [a folder/k], read len = [3]",
                    "AwsS3Store::WaitForReadObjectAsync cv wait start. total = [1] complete count "
                    "= [0]",
                    "AwsS3Store::WaitForReadObjectAsync cv wait end. total = [1] complete count = "
                    "[1]"));
    EXPECT_THAT(
        ofStore,
        ElementsAre(
            "AwsS3Store::ReadObjectAsync lambda enter.",
            "[AwsS3Store::HandleAsyncReadFunc]. enter.",
            "[AwsS3Store::HandleAsyncReadFunc]. enter. Key: a folder/k Context_Start = 5", Copied(),
            "[AwsS3Store::HandleAsyncReadFunc]. notify_one start.",
            "[AwsS3Store::HandleAsyncReadFunc]. notify_one end.",
            "[AwsS3Store::HandleAsyncReadFunc]. leave. Total Request= 1 , complete = 1, EC = 0"));
    const auto place = [&](const std::string& line) {
        return std::find(lines.begin(), lines.end(), line);
    };
    EXPECT_LT(place(ofHost[3]), place("[AwsS3Store::HandleAsyncReadFunc]. enter."));
    EXPECT_LT(place("[AwsS3Store::HandleAsyncReadFunc]. notify_one end."), place(ofHost[4]));
}

}  // namespace
}  // namespace Mirqos::Test
