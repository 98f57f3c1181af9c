// Starts, uses and stops the library again and again against a real server. Reads and uploads are
// on their way until just before each stop; in some cycles nobody waits for the reads, and the
// store is released while they run. At the end the process holds what it held at the beginning.
//
//     soak_cycles CYCLES MEMORY_SLACK_KIB

#include <mirqos/mirqos.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/host/Check.h"
#include "tests/host/ProcessFigures.h"
#include "tests/service/S3Server.h"
#include "tests/soak/Content.h"
#include "tests/support/StorePointer.h"
#include "tests/support/Watchdog.h"

namespace Mirqos::Soak {
namespace {

constexpr std::uint64_t kRanges = 4;
constexpr std::uint64_t kRange = 64 * 1024;
constexpr std::uint64_t kUploaded = 200 * 1000;
// A loss in each hundredth of 1,000 cycles goes beyond them.
constexpr std::int64_t kHandleSlack = 8;
constexpr std::int64_t kThreadSlack = 2;

class Cycles {
public:
    Cycles() {
        const MIRQOSEngineStarter engine(true, CloudStoreContext());
        const Test::StorePointer store = NewStore();
        CloudStoreCreateBucketContext create;
        create.m_pszBucket = m_bucket.c_str();
        m_checks.ExpectEqual(store->CreateBucket(&create), 0, "CreateBucket");
        const Bytes bytes = m_content.All();
        CloudStoreWriteObjectContext write;
        write.m_pszBucket = m_bucket.c_str();
        write.m_pszKey = kRead;
        write.m_pBuf = bytes.data();
        write.m_nBufLen = bytes.size();
        m_checks.ExpectEqual(store->WriteObject(&write), 0, "WriteObject");
    }

    void Run(int cycle) {
        const bool waits = cycle % 3 != 0;
        const Content sent(static_cast<std::uint64_t>(cycle), kUploaded);
        Bytes read(static_cast<std::size_t>(m_content.Size()));
        const MIRQOSEngineStarter engine(true, CloudStoreContext());
        const Test::StorePointer reader = NewStore();
        const Test::StorePointer writer = NewStore();
        const std::string upload = BeginUpload(*writer, sent);
        CloudStoreReadObjectContext range = StartReads(*reader, read);
        if (waits) {
            m_checks.ExpectEqual(reader->WaitForReadObjectAsync(&range), 0, "the reads");
            m_checks.Expect(m_content.Is(read.data(), read.size()), "the bytes read");
        }
        CloudStoreFinishMultiPartUploadContext finish;
        finish.m_pszUploadId = upload.c_str();
        finish.m_pszBucket = m_bucket.c_str();
        finish.m_pszKey = kSent;
        finish.m_nPartCount = 1;
        m_checks.ExpectEqual(writer->FinishMultiPartUploadAsync(&finish), 0, "the upload");
    }

    /// What the last cycle sent stands on the server.
    void VerifySent(int cycle) {
        const Content sent(static_cast<std::uint64_t>(cycle), kUploaded);
        Bytes read(static_cast<std::size_t>(kUploaded));
        const MIRQOSEngineStarter engine(true, CloudStoreContext());
        const Test::StorePointer store = NewStore();
        CloudStoreReadObjectContext whole;
        whole.m_pszBucket = m_bucket.c_str();
        whole.m_pszKey = kSent;
        whole.m_pBuf = read.data();
        whole.m_nReadLen = kUploaded;
        whole.m_nReadSize = 0;
        whole.m_nRangeEnd = kUploaded - 1;
        m_checks.ExpectEqual(store->ReadObject(&whole), 0, "ReadObject");
        m_checks.Expect(sent.Is(read.data(), whole.m_nReadSize), "the bytes sent last");
    }

    Checks& Results() { return m_checks; }

private:
    static constexpr char kRead[] = "read";
    static constexpr char kSent[] = "sent";

    Test::StorePointer NewStore() const {
        CloudStoreConfigInfo config = Test::ConfigFor(m_bucket);
        config.m_nBufferSize = static_cast<std::int32_t>(kUploaded);
        config.m_nThreadCount = 2;
        Test::StorePointer store(CreateCloudStoreInterface(nullptr));
        store->Init(&config);
        return store;
    }

    std::string BeginUpload(MIRQOSInterface& store, const Content& content) {
        CloudStoreInitMultiPartUploadContext init;
        init.m_pszBucket = m_bucket.c_str();
        init.m_pszKey = kSent;
        CloudStoreInitMultiPartUploadOutcome outcome;
        m_checks.ExpectEqual(store.InitMultiPartUpload(&init, &outcome), 0, "InitMultiPartUpload");
        const Bytes bytes = content.All();
        CloudStoreMultiPartUploadContext part;
        part.m_pszUploadId = outcome.m_szUploadId;
        part.m_pszKey = kSent;
        part.m_pszBucket = m_bucket.c_str();
        part.m_nPartNumber = 1;
        part.m_pBuf = bytes.data();
        part.m_nBufLen = static_cast<std::int32_t>(bytes.size());
        part.m_bLastPart = true;
        m_checks.ExpectEqual(store.DoMultiPartUploadAsync(&part), 0, "DoMultiPartUploadAsync");
        return outcome.m_szUploadId;
    }

    CloudStoreReadObjectContext StartReads(MIRQOSInterface& store, Bytes& place) {
        CloudStoreReadObjectContext read;
        for (std::uint64_t n = 0; n < kRanges; ++n) {
            read.m_pszBucket = m_bucket.c_str();
            read.m_pszKey = kRead;
            read.m_pBuf = place.data() + n * kRange;
            read.m_nReadLen = kRange;
            read.m_nReadSize = 0;
            read.m_nRangeStart = n * kRange;
            read.m_nRangeEnd = read.m_nRangeStart + kRange - 1;
            m_checks.ExpectEqual(store.ReadObjectAsync(&read), 0, "ReadObjectAsync");
        }
        return read;
    }

    const std::string m_bucket = Test::NewBucketName();
    const Content m_content{4711, kRanges* kRange};
    Checks m_checks;
};

int Main(int cycles, std::int64_t memorySlack) {
    const int warmUp = std::max(1, cycles / 10);
    Cycles work;
    ProcessFigures warm = {};
    for (int cycle = 1; cycle <= cycles; ++cycle) {
        work.Run(cycle);
        if (cycle == warmUp) {
            warm = MeasureProcess();
            std::printf("warm: %s\n", Describe(warm).c_str());
        }
    }
    const ProcessFigures end = MeasureProcess();
    std::printf("end: %s\n", Describe(end).c_str());
    work.VerifySent(cycles);
    Checks& checks = work.Results();
    checks.Expect(warm.handles > 0 && warm.memoryBytes > 0 && warm.threads > 0, "known figures");
    checks.Expect(end.handles <= warm.handles + kHandleSlack, "handles are flat");
    checks.Expect(end.threads <= warm.threads + kThreadSlack, "threads are flat");
    checks.Expect(end.memoryBytes <= warm.memoryBytes + memorySlack, "memory is flat");
    return checks.ExitCode("soak_cycles");
}

}  // namespace
}  // namespace Mirqos::Soak

int main(int argc, char** argv) {
    const int cycles = argc == 3 ? std::atoi(argv[1]) : 0;
    if (cycles <= 0) {
        std::printf("usage: soak_cycles CYCLES MEMORY_SLACK_KIB\n");
        return 2;
    }
    const Mirqos::Test::Watchdog watchdog(
        Mirqos::Test::Watchdog::LimitOf(std::getenv("MIRQOS_TEST_LIMIT_SECONDS")),
        [] { return std::string("the cycles"); });
    return Mirqos::Soak::Main(cycles, std::atoll(argv[2]) * 1024);
}
