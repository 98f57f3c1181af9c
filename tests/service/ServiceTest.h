#pragma once

#include <gmock/gmock.h>
#include <mirqos/mirqos.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/service/S3Server.h"
#include "tests/support/LibraryLogRecording.h"
#include "tests/support/StorePointer.h"

namespace Mirqos::Test {

using Bytes = std::vector<unsigned char>;

/// `size` bytes that look random and are the same for the same `seed`.
Bytes SomeBytes(std::size_t size, std::uint64_t seed = 1);

/// What one call of ReadObject gave and left alone.
struct ReadAttempt {
    /// What m_nReadSize holds before the call.
    static constexpr std::uint64_t kUntouchedSize = 0xA5A5A5A5A5A5A5A5;
    /// What each byte of the buffer holds before the call.
    static constexpr unsigned char kUntouchedByte = 0x5C;

    std::int32_t status;
    std::uint64_t readSize;
    Bytes buffer;  ///< the range's length, and a margin that nothing may write to

    /// The bytes that the call says it delivered.
    Bytes Delivered() const;
    /// Neither m_nReadSize nor any byte of m_pBuf was written.
    bool LeftAlone() const;
    /// No byte of m_pBuf beyond the delivered ones was written.
    bool RestLeftAlone() const;
};

/// Base of the tests against the real server: the library is started, its log recorded without the
/// SDK's own statements, and one bucket exists that only this test uses.
class ServiceTest : public testing::Test {
protected:
    /// `sdkLogLevel` lets SDK statements into the record, from 0, none, to 6, all.
    explicit ServiceTest(std::int32_t sdkLogLevel = 0);
    ~ServiceTest() override;

    /// The server as the library is told of it, with a work buffer of `bufferSize` bytes.
    CloudStoreConfigInfo Config(std::size_t bufferSize = 1 << 20) const;
    static StorePointer NewStore(CloudStoreConfigInfo config);

    /// Each writes, reads or deletes in the test's bucket unless another is named.
    std::int32_t Write(MIRQOSInterface& store, const std::string& key, const Bytes& bytes,
                       const std::string& bucket = {});
    ReadAttempt Read(MIRQOSInterface& store, const std::string& key, std::uint64_t first,
                     std::uint64_t last, const std::string& bucket = {});
    std::int32_t Delete(MIRQOSInterface& store, const std::string& key,
                        const std::string& bucket = {});
    /// Asks whether that object exists in the test's bucket.
    std::int32_t Head(MIRQOSInterface& store, const std::string& key, bool& exists);

    const std::string& Bucket() const { return m_bucket; }
    LibraryLogRecording& Log() { return m_log; }
    /// Forgets the log lines so far, which the preparation of a test wrote.
    void ForgetLog() { m_log.Clear(); }

private:
    CloudStoreContext m_context;
    LibraryLogRecording m_log;
    std::string m_bucket;
};

}  // namespace Mirqos::Test
