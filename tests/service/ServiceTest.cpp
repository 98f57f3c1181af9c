#include "tests/service/ServiceTest.h"

#include <algorithm>
#include <random>

namespace Mirqos::Test {

Bytes SomeBytes(std::size_t size, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; i += 8) {
        const std::uint64_t word = random();
        for (std::size_t j = 0; j < 8 && i + j < size; ++j) {
            bytes[i + j] = static_cast<unsigned char>(word >> (8 * j));
        }
    }
    return bytes;
}

Bytes ReadAttempt::Delivered() const {
    if (readSize > buffer.size()) {
        ADD_FAILURE() << "m_nReadSize is " << readSize << ", beyond the buffer";
        return {};
    }
    return {buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(readSize)};
}

bool ReadAttempt::LeftAlone() const {
    return readSize == kUntouchedSize &&
           std::all_of(buffer.begin(), buffer.end(),
                       [](unsigned char byte) { return byte == kUntouchedByte; });
}

bool ReadAttempt::RestLeftAlone() const {
    return readSize <= buffer.size() &&
           std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(readSize), buffer.end(),
                       [](unsigned char byte) { return byte == kUntouchedByte; });
}

ServiceTest::ServiceTest(std::int32_t sdkLogLevel) : m_bucket(NewBucketName()) {
    m_context.m_nLogLevel = sdkLogLevel;
    InitCloudStoreContext(&m_context);
    const StorePointer store = NewStore(Config());
    CloudStoreCreateBucketContext create;
    create.m_pszBucket = m_bucket.c_str();
    EXPECT_EQ(store->CreateBucket(&create), 0) << testing::PrintToString(m_log.Texts());
    ForgetLog();
}

ServiceTest::~ServiceTest() {
    UnInitCloudStoreContext();
}

CloudStoreConfigInfo ServiceTest::Config(std::size_t bufferSize) const {
    CloudStoreConfigInfo config = ConfigFor(m_bucket);
    config.m_nBufferSize = static_cast<std::int32_t>(bufferSize);
    return config;
}

StorePointer ServiceTest::NewStore(CloudStoreConfigInfo config) {
    StorePointer store(CreateCloudStoreInterface(nullptr));
    EXPECT_EQ(store->Init(&config), 0);
    return store;
}

std::int32_t ServiceTest::Write(MIRQOSInterface& store, const std::string& key, const Bytes& bytes,
                                const std::string& bucket) {
    CloudStoreWriteObjectContext write;
    write.m_pszBucket = bucket.empty() ? m_bucket.c_str() : bucket.c_str();
    write.m_pszKey = key.c_str();
    write.m_pBuf = bytes.data();
    write.m_nBufLen = bytes.size();
    return store.WriteObject(&write);
}

ReadAttempt ServiceTest::Read(MIRQOSInterface& store, const std::string& key, std::uint64_t first,
                              std::uint64_t last, const std::string& bucket) {
    constexpr std::size_t margin = 64;
    ReadAttempt attempt{
        0, ReadAttempt::kUntouchedSize,
        Bytes(static_cast<std::size_t>(last - first + 1) + margin, ReadAttempt::kUntouchedByte)};
    CloudStoreReadObjectContext read;
    read.m_pszBucket = bucket.empty() ? m_bucket.c_str() : bucket.c_str();
    read.m_pszKey = key.c_str();
    read.m_pBuf = attempt.buffer.data();
    read.m_nReadLen = last - first + 1;
    read.m_nReadSize = attempt.readSize;
    read.m_nRangeStart = first;
    read.m_nRangeEnd = last;
    attempt.status = store.ReadObject(&read);
    attempt.readSize = read.m_nReadSize;
    return attempt;
}

std::int32_t ServiceTest::Delete(MIRQOSInterface& store, const std::string& key,
                                 const std::string& bucket) {
    CloudStoreDeleteObjectContext record;
    record.m_pszBucket = bucket.empty() ? m_bucket.c_str() : bucket.c_str();
    record.m_pszKey = key.c_str();
    return store.DeleteObject(&record);
}

std::int32_t ServiceTest::Head(MIRQOSInterface& store, const std::string& key, bool& exists) {
    CloudStoreHeadObjectConext head;
    head.m_pszBucket = Bucket().c_str();
    head.m_pszKey = key.c_str();
    const std::int32_t status = store.HeadObject(&head);
    exists = head.m_bExists;
    return status;
}

}  // namespace Mirqos::Test
