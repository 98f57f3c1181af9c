#pragma once

#include <aws/s3/S3Errors.h>
#include <gmock/gmock.h>
#include <mirqos/mirqos.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "store/AwsS3Store.h"
#include "tests/support/LibraryLogRecording.h"
#include "tests/support/ScriptedServer.h"
#include "tests/wire/SignatureCheck.h"

namespace Mirqos::Test {

enum class Style { path, virtualHost };
void PrintTo(Style style, std::ostream* stream);

/// The status of a failed outcome with that error.
inline std::int32_t StatusOf(Aws::S3::S3Errors error) {
    return static_cast<std::int32_t>(error);
}

/// A read, and what became of its record.
struct ReadResult {
    static constexpr std::uint64_t kUntouchedSize = 0xDEADBEEFCAFEF00Du;
    static constexpr char kUntouchedByte = '\xA5';

    std::int32_t status = 0;
    std::uint64_t size = 0;
    std::string buffer;

    std::string Delivered() const { return buffer.substr(0, static_cast<std::size_t>(size)); }
    /// Neither the size nor a byte of the buffer has been written.
    bool Untouched() const;
};

/// A started library whose every connection goes to a scripted server, whatever the host is called,
/// and whose waits between attempts are noted instead of done. Stores made here have to be gone
/// when the test ends.
class WireTest : public testing::Test {
public:
    static constexpr const char* kBucket = "the-bucket";

protected:
    static constexpr const char* kRegion = "eu-central-1";
    static constexpr const char* kKeyId = "AKIDOFTESTS";
    static constexpr const char* kSecret = "secret/of+tests";
    /// Endpoint of path-style stores.
    static constexpr const char* kEndpoint = "storage.test:9000";
    /// Host of the virtual-host stores' bucket.
    static constexpr const char* kVirtualHost = "the-bucket.s3.eu-central-1.amazonaws.com";

    WireTest();
    ~WireTest() override;

    struct Setup {
        Style style = Style::path;
        std::int32_t provider = 0;
        std::int32_t threads = 0;
        std::int32_t buffer = 64 * 1024;
        const char* endpoint = kEndpoint;
    };
    static Setup In(Style style);
    std::unique_ptr<AwsS3Store> MakeStore(const Setup& setup);
    std::unique_ptr<AwsS3Store> MakeStore() { return MakeStore(Setup()); }
    /// With the lines of its threads written, so that they do not come between later ones.
    std::unique_ptr<AwsS3Store> StoreWithThreads(std::int32_t threads);

    static std::int32_t Write(MIRQOSInterface& store, const std::string& key,
                              const std::string& body, const char* bucket = kBucket);
    /// Reads `length` bytes from `start`; the buffer is a little larger, to show what lies beyond.
    static ReadResult Read(MIRQOSInterface& store, const std::string& key, std::uint64_t start = 0,
                           std::uint64_t length = 100, const char* bucket = kBucket);
    static std::int32_t Delete(MIRQOSInterface& store, const std::string& key);
    static std::int32_t Create(MIRQOSInterface& store, const char* bucket, const char* location);
    static bool Head(MIRQOSInterface& store, const char* bucket = kBucket);

    /// The library's own log lines so far, without those of the SDK layer.
    std::vector<std::string> Lines() const;
    /// The one request that has arrived.
    RecordedRequest OnlyRequest() const;
    /// Waits between attempts so far.
    std::vector<std::chrono::milliseconds> Waits() const;
    /// Puts the server behind every host; afterwards the seam is as the constructor leaves it.
    void ResolveTo(const std::string& host, std::uint16_t port);
    /// From the next store on, a connection without a byte moving for this long has failed.
    static void LimitStalls(std::chrono::milliseconds limit);

    /// Status and log lines of a failed write, a failed read.
    void ExpectWriteFailed(std::int32_t status, Aws::S3::S3Errors error, const std::string& key,
                           const testing::Matcher<std::string>& message);
    void ExpectReadFailed(const ReadResult& read, Aws::S3::S3Errors error, const std::string& key,
                          const testing::Matcher<std::string>& message,
                          const std::string& exceptionName = "");

    LibraryLogRecording m_log;

private:
    MIRQOSEngineStarter m_engine{true, CloudStoreContext()};
    mutable std::mutex m_mutex;
    std::string m_resolvedHost;
    std::uint16_t m_resolvedPort = 0;
    std::vector<std::chrono::milliseconds> m_waits;

protected:
    ScriptedServer m_server;
};

/// "YYYYMMDDTHHMMSSZ"
bool IsAmzDate(const std::string& text);

/// The request's XML body. An installed SDK lays it out over several lines and shortens empty
/// elements; here it is on one line and long.
std::string XmlOf(const RecordedRequest& request);

/// The message of an error that has no document, as the SDK words it.
std::string MessageOfNoBody(int httpStatus);

/// The names of the request's headers that no request of ours has any business to carry, and of
/// those it carries twice.
std::string UnknownHeaders(const RecordedRequest& request);

/// What each wait of the default ten retries is.
std::vector<std::chrono::milliseconds> AllWaits();

}  // namespace Mirqos::Test
