#include "tests/wire/WireTest.h"

#include <cctype>
#include <regex>
#include <set>
#include <thread>

#include "sdk/core/Seam.h"
#include "tests/support/UsedSdk.h"

namespace Mirqos::Test {

using testing::AllOf;
using testing::EndsWith;
using testing::StartsWith;

void PrintTo(Style style, std::ostream* stream) {
    *stream << (style == Style::path ? "path style" : "virtual-host style");
}

bool ReadResult::Untouched() const {
    return size == kUntouchedSize && buffer == std::string(buffer.size(), kUntouchedByte);
}

WireTest::WireTest() {
    ResolveTo("127.0.0.1", m_server.Port());
    TheSeam().resolve = [this](const std::string&, std::uint16_t) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return Seam::Address{m_resolvedHost, m_resolvedPort};
    };
    TheSeam().sleep = [this](std::chrono::milliseconds wait) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waits.push_back(wait);
    };
    m_log.Clear();  // the start's own line
}

WireTest::~WireTest() {
    TheSeam() = Seam();
}

WireTest::Setup WireTest::In(Style style) {
    Setup setup;
    setup.style = style;
    return setup;
}

std::unique_ptr<AwsS3Store> WireTest::MakeStore(const Setup& setup) {
    CloudStoreConfigInfo config;
    config.m_pszRegion = kRegion;
    config.m_pszBucket = "the-configured-bucket";
    config.m_pszAccessKeyId = kKeyId;
    config.m_pszSecretKey = kSecret;
    config.m_pszEndPoint = setup.style == Style::path ? setup.endpoint : nullptr;
    config.m_bUseHttps = 0;
    config.m_nBufferSize = setup.buffer;
    config.m_nThreadCount = setup.threads;
    config.m_nProviderType = setup.provider;
    auto store = std::make_unique<AwsS3Store>();
    EXPECT_EQ(store->Init(&config), 0);
    return store;
}

std::unique_ptr<AwsS3Store> WireTest::StoreWithThreads(std::int32_t threads) {
    Setup setup;
    setup.threads = threads;
    const std::size_t lines =
        m_log.CountContaining("is started.") + static_cast<std::size_t>(threads);
    auto store = MakeStore(setup);
    while (m_log.CountContaining("is started.") < lines) {
        std::this_thread::yield();
    }
    return store;
}

std::int32_t WireTest::Write(MIRQOSInterface& store, const std::string& key,
                             const std::string& body, const char* bucket) {
    CloudStoreWriteObjectContext write;
    write.m_pszBucket = bucket;
    write.m_pszKey = key.c_str();
    write.m_pBuf = reinterpret_cast<const unsigned char*>(body.data());
    write.m_nBufLen = body.size();
    return store.WriteObject(&write);
}

ReadResult WireTest::Read(MIRQOSInterface& store, const std::string& key, std::uint64_t start,
                          std::uint64_t length, const char* bucket) {
    ReadResult result;
    result.buffer.assign(static_cast<std::size_t>(length) + 16, ReadResult::kUntouchedByte);
    CloudStoreReadObjectContext read;
    read.m_pszBucket = bucket;
    read.m_pszKey = key.c_str();
    read.m_pBuf = reinterpret_cast<unsigned char*>(result.buffer.data());
    read.m_nReadLen = length;
    read.m_nReadSize = ReadResult::kUntouchedSize;
    read.m_nRangeStart = start;
    read.m_nRangeEnd = start + length - 1;
    result.status = store.ReadObject(&read);
    result.size = read.m_nReadSize;
    return result;
}

std::int32_t WireTest::Delete(MIRQOSInterface& store, const std::string& key) {
    CloudStoreDeleteObjectContext context;
    context.m_pszBucket = kBucket;
    context.m_pszKey = key.c_str();
    return store.DeleteObject(&context);
}

std::int32_t WireTest::Create(MIRQOSInterface& store, const char* bucket, const char* location) {
    CloudStoreCreateBucketContext context;
    context.m_pszBucket = bucket;
    context.m_pszRegion = location;
    return store.CreateBucket(&context);
}

bool WireTest::Head(MIRQOSInterface& store, const char* bucket) {
    CloudStoreHeadBucketConext context;
    context.m_pszBucket = bucket;
    context.m_bExists = true;  // the store clears it
    EXPECT_EQ(store.HeadBucket(&context), 0);
    return context.m_bExists;
}

std::vector<std::string> WireTest::Lines() const {
    std::vector<std::string> lines;
    for (const std::string& line : m_log.Texts()) {
        if (line.rfind("[AWS_SDK]", 0) != 0) {
            lines.push_back(line);
        }
    }
    return lines;
}

RecordedRequest WireTest::OnlyRequest() const {
    const std::vector<RecordedRequest> requests = m_server.Requests();
    EXPECT_EQ(requests.size(), 1u);
    return requests.empty() ? RecordedRequest() : requests.front();
}

std::vector<std::chrono::milliseconds> WireTest::Waits() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_waits;
}

void WireTest::ResolveTo(const std::string& host, std::uint16_t port) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_resolvedHost = host;
    m_resolvedPort = port;
}

void WireTest::LimitStalls(std::chrono::milliseconds limit) {
    TheSeam().stallLimit = limit;
}

void WireTest::ExpectWriteFailed(std::int32_t status, Aws::S3::S3Errors error,
                                 const std::string& key,
                                 const testing::Matcher<std::string>& message) {
    EXPECT_EQ(status, StatusOf(error));
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    const std::string start = "AwsS3Store::WriteObject failed. EC:[" + std::to_string(status) +
                              "], region:[" + kRegion + "], bucket:[the-configured-bucket], OID:[" +
                              key + "], ErrMsg[";
    ASSERT_THAT(lines[0], AllOf(StartsWith(start), EndsWith("].")));
    EXPECT_THAT(lines[0].substr(start.size(), lines[0].size() - start.size() - 2), message);
}

void WireTest::ExpectReadFailed(const ReadResult& read, Aws::S3::S3Errors error,
                                const std::string& key,
                                const testing::Matcher<std::string>& message,
                                const std::string& exceptionName) {
    EXPECT_EQ(read.status, StatusOf(error));
    EXPECT_TRUE(read.Untouched());
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], std::string("region:[") + kRegion +
                            "], bucket:[the-configured-bucket] read object:[" + key + "] failed.");
    const std::string end = ":" + exceptionName + "],EC:[" + std::to_string(read.status) + "].";
    ASSERT_THAT(lines[1], AllOf(StartsWith("["), EndsWith(end)));
    EXPECT_THAT(lines[1].substr(1, lines[1].size() - end.size() - 1), message);
}

bool IsAmzDate(const std::string& text) {
    const std::string shape = "ddddddddTddddddZ";
    if (text.size() != shape.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (shape[i] == 'd' ? !digit : text[i] != shape[i]) {
            return false;
        }
    }
    return true;
}

std::string XmlOf(const RecordedRequest& request) {
    if (kBundledSdk) {
        return request.body;
    }
    const std::string flat = std::regex_replace(request.body, std::regex("\n *"), "");
    const std::string closed = std::regex_replace(flat, std::regex("<(\\w+)/>"), "<$1></$1>");
    return std::regex_replace(closed, std::regex("^<\\?xml version=\"1.0\"\\?>"),
                              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
}

std::string MessageOfNoBody(int httpStatus) {
    return kBundledSdk ? "No response body. Response code: " + std::to_string(httpStatus)
                       : "No response body.";
}

std::string UnknownHeaders(const RecordedRequest& request) {
    // "connection" may come from a transport, with its default value
    static const std::set<std::string> known{
        "host",       "content-length",       "content-type", "range",      "authorization",
        "user-agent", "x-amz-content-sha256", "x-amz-date",   "connection", "accept"};
    std::set<std::string> seen;
    std::string unknown;
    for (const auto& header : request.headers) {
        std::string name = header.first;
        for (char& c : name) {
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        if ((known.count(name) == 0 && !IsOfTheSdkItself(name)) || !seen.insert(name).second) {
            unknown += name + " ";
        }
    }
    return unknown;
}

std::vector<std::chrono::milliseconds> AllWaits() {
    std::vector<std::chrono::milliseconds> waits;
    for (const int wait : {0, 50, 100, 200, 400, 800, 1600, 3200, 6400, 12800}) {
        waits.emplace_back(wait);
    }
    return waits;
}

}  // namespace Mirqos::Test
