#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/text.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/CopyTest.h"
#include "tests/wire/Pages.h"

namespace Mirqos::Test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using Call = FaultyFiles::Call;

constexpr std::uint64_t kMiB = 1024 * 1024;

/// A copy of 250,000 bytes through a file, in ranges of 64 KiB and parts of 100,000 bytes.
class CopyThroughFile : public Copy {
protected:
    static constexpr std::uint64_t kSize = 250000;
    static constexpr char kName[] = "[AwsS3Store::GCSMultipartCopyObject]";

    CopyThroughFile() : m_store(StoreOfProvider(6)) {
        for (std::uint64_t i = 0; i < kSize; ++i) {
            m_bytes += static_cast<char>((i * 31 + i / 251) % 256);
        }
        m_copy.m_pszSrcKey = "s";
        m_copy.m_nSrcSize = kSize;
        m_copy.m_nPartSize = 100000;
        m_log.Clear();
    }

    void ServeSource() { ServeSource("s", m_bytes); }
    void ServeSource(const std::string& key, const std::string& bytes) {
        const std::string target = "/source-bucket/" + key;
        m_server.On("HEAD", target).Always(Answer::Status(200));
        m_server.On("GET", target).Call([bytes](const RecordedRequest& request) {
            const std::string range = request.Value("range");
            const auto dash = range.find('-');
            const auto first = static_cast<std::size_t>(std::stoull(range.substr(6, dash - 6)));
            const auto last = static_cast<std::size_t>(std::stoull(range.substr(dash + 1)));
            return Answer::Status(206)
                .Header("Content-Range", "bytes " + range.substr(6) + "/*")
                .Body(bytes.substr(first, last - first + 1));
        });
    }
    void ServeTarget(const std::string& key = "t", const std::string& upload = "u") {
        const std::string target = "/target-bucket/" + key;
        m_server.On("POST", target + "?uploads")
            .Always(Answer::Status(200).Body("<InitiateMultipartUploadResult><UploadId>" + upload +
                                             "</UploadId></InitiateMultipartUploadResult>"));
        m_server.On("PUT", target + "?partNumber=").Always(Answer::Status(200).Header("ETag", "e"));
        m_server.On("POST", target + "?uploadId=" + upload)
            .Always(Answer::Status(200).Body(
                "<CompleteMultipartUploadResult></CompleteMultipartUploadResult>"));
        m_server.On("DELETE", target + "?uploadId=" + upload).Always(Answer::Status(204));
    }
    /// The bytes of all parts sent to that key, in the order they came in.
    std::string SentTo(const std::string& key) const {
        std::string sent;
        for (const RecordedRequest& request : m_server.Requests()) {
            if (request.target.find("/" + key + "?partNumber=") != std::string::npos) {
                sent += request.body;
            }
        }
        return sent;
    }
    std::size_t Count(const std::string& method, const std::string& targetPart) const {
        std::size_t count = 0;
        for (const RecordedRequest& request : m_server.Requests()) {
            count +=
                request.method == method && request.target.find(targetPart) != std::string::npos
                    ? 1
                    : 0;
        }
        return count;
    }
    /// Status, nothing left behind, and the line that ends every such copy.
    void ExpectFailed(std::int32_t status) {
        EXPECT_EQ(m_store->CopyObject(&m_copy), status);
        EXPECT_FALSE(m_files.LeftBehind());
        EXPECT_EQ(m_files.OpenFiles(), 0);
        EXPECT_EQ(Lines().back(),
                  "Copy from " + Ends("s", "t") + " failed EC:[" + std::to_string(status) + "].");
    }
    std::string File() const { return NarrowText(m_files.Name().c_str()); }

    std::string m_bytes;
    FaultyFiles m_files;
    std::unique_ptr<AwsS3Store> m_store;
};

TEST_F(CopyThroughFile, EveryByteArrivesInPartsAndNothingIsLeft) {
    ServeSource();
    ServeTarget();
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    EXPECT_FALSE(m_files.LeftBehind());
    EXPECT_EQ(m_files.OpenFiles(), 0);
    EXPECT_TRUE(SentTo("t") == m_bytes);
    EXPECT_EQ(Count("GET", "/source-bucket/s"), 4u);
    EXPECT_EQ(Count("PUT", "partNumber="), 3u);
    EXPECT_EQ(Count("POST", "uploadId=u"), 1u);
    EXPECT_EQ(Count("DELETE", ""), 0u);
    const auto lines = Lines();
    for (const std::string& line : std::vector<std::string>{
             "[AwsS3Store::CopyObject] Source size for s is [250000], partsize [100000]",
             "[AwsS3Store::CopyObject]Calling Headobject for s in source-bucket",
             kName + std::string(" Temporary file is ") + File() + ".",
             "[AwsS3Store::DownloadFileForCopyObject]The size of object s is 250000.",
             "[AwsS3Store::DownloadFileForCopyObject]Reading object dwToRead=65536",
             "[AwsS3Store::DownloadFileForCopyObject]Reading object dwToRead=53392",
             "[AwsS3Store::DownloadFileForCopyObject] Dwonloaded object s to file [" + File() +
                 "] success.",
             "[AwsS3Store::UploadFileForCopyObject] Size of file " + File() + " is [250000].",
             "[AwsS3Store::UploadFileForCopyObject] Uploaded object t to bucket [target-bucket] "
             "from file [" +
                 File() + "] success.",
             kName + std::string(" Temporary file deleted ") + File() + " ret[0]"}) {
        EXPECT_THAT(lines, Contains(line));
    }
    EXPECT_EQ(lines.back(), "Copy from " + Ends("s", "t") + " success EC:[0].");
}

TEST_F(CopyThroughFile, TheFileIsNamedAfterItsPurpose) {
    ServeSource();
    ServeTarget();
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    EXPECT_THAT(File().substr(File().find_last_of("/\\") + 1), StartsWith("QVN"));
}

TEST_F(CopyThroughFile, RangesHaveAtMost4MiBHoweverLargeTheWorkBuffer) {
    ServeSource("s", std::string(9 * kMiB, 'x'));
    ServeTarget();
    m_store = StoreOfProvider(6, 16 * kMiB);
    m_copy.m_nSrcSize = 9 * kMiB;
    m_copy.m_nPartSize = 8 * kMiB;
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    std::vector<std::string> ranges;
    for (const RecordedRequest& request : m_server.Requests()) {
        if (request.method == "GET") {
            ranges.push_back(request.Value("range"));
        }
    }
    EXPECT_THAT(ranges,
                ElementsAre("bytes=0-4194303", "bytes=4194304-8388607", "bytes=8388608-9437183"));
}

TEST_F(CopyThroughFile, ASizeThatWasLookedUpIsWrittenBackAndNeedsNoHead) {
    ServeSource();
    ServeTarget();
    const std::string key(300, 's');  // listed with its length as its size
    m_server.On("GET", "/the-configured-bucket").Always(ListingPage({key}));
    m_server.On("GET", "/source-bucket/" + key).Call([this](const RecordedRequest& request) {
        const std::string last =
            request.Value("range").substr(request.Value("range").find('-') + 1);
        return Answer::Status(206).Body(m_bytes.substr(0, std::stoul(last) + 1));
    });
    m_copy.m_pszSrcKey = key.c_str();
    m_copy.m_nSrcSize = 0;
    m_copy.m_nPartSize = 200;
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    EXPECT_EQ(m_copy.m_nSrcSize, 300u);
    EXPECT_EQ(Count("HEAD", ""), 0u);
    EXPECT_EQ(Count("PUT", "partNumber="), 2u);
}

TEST_F(CopyThroughFile, AMissingSourceIsSeenByTheHead) {
    m_server.On("HEAD", "").Always(Answer::Status(404));
    ExpectFailed(16);
    m_copy.m_bIgnoreMissingSource = true;
    m_log.Clear();
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    EXPECT_TRUE(m_copy.m_bSourceMissing);
    EXPECT_EQ(m_log.CountContaining("Copy from"), 0u) << "no further line";
    EXPECT_EQ(m_files.Name(), L"");
}

TEST_F(CopyThroughFile, ARefusedHeadEndsTheCopy) {
    m_server.On("HEAD", "").Always(Answer::Status(403));
    ExpectFailed(15);
    EXPECT_EQ(m_files.Name(), L"");
}

TEST_F(CopyThroughFile, ASourceThatVanishesAfterTheHeadIsForgivenOnRequest) {
    m_server.On("HEAD", "").Always(Answer::Status(200));
    m_server.On("GET", "").Always(Answer::S3Error(404, "NoSuchKey", "Gone"));
    ExpectFailed(StatusOf(Aws::S3::S3Errors::NO_SUCH_KEY));
    m_copy.m_bIgnoreMissingSource = true;
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    EXPECT_TRUE(m_copy.m_bSourceMissing);
    EXPECT_FALSE(m_files.LeftBehind());
    EXPECT_EQ(Lines().back(), "Copy from " + Ends("s", "t") + " success EC:[0].");
}

TEST_F(CopyThroughFile, AShortReadGives30) {
    m_server.On("HEAD", "").Always(Answer::Status(200));
    m_server.On("GET", "").Always(Answer::Status(206).Body("short"));
    ExpectFailed(30);
    EXPECT_EQ(m_log.CountContaining("[AwsS3Store::DownloadFileForCopyObject]Failed to read "
                                    "object:[s], bytes2Read:[65536], readed:5, offset:0."),
              1u);
}

TEST_F(CopyThroughFile, EveryFailureOfTheDownloadsFileIsTheResultAndLeavesNothing) {
    ServeSource();
    struct Case {
        Call call;
        int turn;
        const char* line;
    };
    for (const Case& c :
         {Case{Call::folder, 1, "Getting temporary path failed. EC:77."},
          Case{Call::name, 1, "temporary filename  failed. EC:77."},
          Case{Call::create, 1, "Failed to create file "},
          Case{Call::seek, 1, " offset 250000 failed. EC:77."}, Case{Call::end, 1, "SetEndOfFile "},
          Case{Call::seek, 2, " offset 0 failed. EC:77."},
          Case{Call::write, 2, " failed. ToWriteBytes=65536, EC:77."}}) {
        m_log.Clear();
        m_files.Fail(c.call, 77, c.turn);
        ExpectFailed(77);
        EXPECT_EQ(m_log.CountContaining(c.line), 1u) << c.line;
        EXPECT_EQ(Count("POST", "uploads"), 0u) << "no upload was opened";
    }
}

// The status of a failed call is whatever the system gives as its error.
TEST_F(CopyThroughFile, AWriteThatFailsWithoutAnErrorEndsTheDownloadAsASuccess) {
    ServeSource();
    ServeTarget();
    m_files.Fail(Call::write, 0, 2);
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    EXPECT_EQ(Count("GET", "/source-bucket/s"), 2u) << "nothing is fetched after it";
    EXPECT_EQ(m_log.CountContaining(File() + " failed. ToWriteBytes=65536, EC:0."), 1u);
    EXPECT_EQ(SentTo("t").size(), kSize) << "the file has had its whole size from the start";
    EXPECT_EQ(SentTo("t").compare(0, 65536, m_bytes, 0, 65536), 0);
    EXPECT_EQ(Count("POST", "uploadId=u"), 1u);
    EXPECT_FALSE(m_files.LeftBehind());
    EXPECT_EQ(m_files.OpenFiles(), 0);
    EXPECT_EQ(Lines().back(), "Copy from " + Ends("s", "t") + " success EC:[0].");
}

TEST_F(CopyThroughFile, AReadThatFailsWithoutAnErrorEndsTheUploadAsASuccessThatCompletesNothing) {
    ServeSource();
    ServeTarget();
    std::size_t parts = 0;
    for (const int turn : {1, 2}) {
        m_log.Clear();
        m_files.Fail(Call::read, 0, turn);
        EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
        parts += static_cast<std::size_t>(turn) - 1;
        EXPECT_EQ(Count("PUT", "partNumber="), parts) << "nothing is sent after it";
        EXPECT_EQ(m_log.CountContaining("[SYNC]:[AwsS3Store::UploadFileForCopyObject]:failed to "
                                        "read file:[" +
                                        File() + "].EC:[0]."),
                  1u);
        EXPECT_EQ(m_log.CountContaining("[AwsS3Store::UploadFileForCopyObject] Uploaded object t "
                                        "to bucket [target-bucket] from file ["),
                  1u);
        EXPECT_FALSE(m_files.LeftBehind());
        EXPECT_EQ(m_files.OpenFiles(), 0);
        EXPECT_EQ(Lines().back(), "Copy from " + Ends("s", "t") + " success EC:[0].");
    }
    EXPECT_EQ(Count("POST", "uploadId=u"), 0u);
    EXPECT_EQ(Count("DELETE", ""), 0u);
}

TEST_F(CopyThroughFile, AShortWriteGives29) {
    ServeSource();
    m_files.WriteShort();
    ExpectFailed(29);
    EXPECT_EQ(m_log.CountContaining("ToWriteBytes=65536, Write=65535, EC:29."), 1u);
}

TEST_F(CopyThroughFile, AFileThatVanishesGives82) {
    ServeSource();
    m_files.vanished = true;
    ExpectFailed(82);
    EXPECT_EQ(m_log.CountContaining("[AwsS3Store::UploadFileForCopyObject]Failed to create "
                                    "directory for file:"),
              1u);
}

TEST_F(CopyThroughFile, AFailureBeforeTheFirstPartLeavesTheUploadOpen) {
    ServeSource();
    ServeTarget();
    for (const Call call : {Call::open, Call::size}) {
        m_files.Fail(call, 78);
        ExpectFailed(78);
    }
    m_files.Fail(Call::read, 78);
    ExpectFailed(78);
    EXPECT_EQ(Count("POST", "uploads"), 3u);
    EXPECT_EQ(Count("DELETE", ""), 0u);
    EXPECT_EQ(m_log.CountContaining(":failed to open file:["), 1u);
    EXPECT_EQ(m_log.CountContaining(" size.EC:[78]."), 1u);
    EXPECT_EQ(m_log.CountContaining(":failed to read file:["), 1u);
}

TEST_F(CopyThroughFile, AFailureAfterAPartAbortsTheUpload) {
    ServeSource();
    m_server.On("PUT", "/target-bucket/t?partNumber=2")
        .Always(Answer::S3Error(403, "AccessDenied", "No"));
    ServeTarget();
    ExpectFailed(15);
    EXPECT_EQ(Count("DELETE", "uploadId=u"), 1u);
    EXPECT_EQ(m_log.CountContaining("[AwsS3Store::UploadFileForCopyObject]:upload part:[2] of "
                                    "object:[t] failed.EC:[15]."),
              1u);
    EXPECT_EQ(m_log.CountContaining("Aborting multipart upload from object [t] bucket "
                                    "[target-bucket] "),
              1u);
    m_files.Fail(Call::read, 79, 2);
    m_log.Clear();
    ExpectFailed(79);
    EXPECT_EQ(Count("DELETE", "uploadId=u"), 2u);
}

TEST_F(CopyThroughFile, ARefusedCompletionAbortsAndAFailedAbortIsOnlyLogged) {
    ServeSource();
    m_server.On("POST", "/target-bucket/t?uploadId=u")
        .Always(Answer::S3Error(400, "InvalidPart", "Bad"));
    m_server.On("DELETE", "").Always(Answer::S3Error(404, "NoSuchUpload", "Gone"));
    ServeTarget();
    ExpectFailed(100);
    EXPECT_EQ(m_log.CountContaining(":complete multi-part upload for object:[t] failed.EC:[100]."),
              1u);
    EXPECT_EQ(m_log.CountContaining(":abort multi-part upload for object:[t] failed.EC:["), 1u);
}

TEST_F(CopyThroughFile, ARefusedOpeningIsTheResult) {
    ServeSource();
    m_server.On("POST", "").Always(Answer::S3Error(403, "AccessDenied", "No"));
    ExpectFailed(15);
    EXPECT_EQ(m_log.CountContaining(":Initialize multi-part upload for:[t] failed.EC:[15]."), 1u);
}

TEST_F(CopyThroughFile, AFileThatCannotBeDeletedMakesAGoodCopyAFailure) {
    ServeSource();
    ServeTarget();
    m_files.Fail(Call::remove, 80);
    EXPECT_EQ(m_store->CopyObject(&m_copy), 80);
    EXPECT_EQ(Count("POST", "uploadId=u"), 1u) << "the copy itself was completed";
    EXPECT_EQ(m_log.CountContaining(kName + std::string(" Temporary file delete failed ") + File() +
                                    ". ret:[80] "),
              1u);
    EXPECT_TRUE(SystemFiles().Delete(m_files.Name()).ok);
}

TEST_F(CopyThroughFile, AFileThatCannotBeDeletedReplacesAnEarlierFailure) {
    ServeSource();
    m_server.On("POST", "").Always(Answer::S3Error(403, "AccessDenied", "No"));
    m_files.Fail(Call::remove, 80);
    EXPECT_EQ(m_store->CopyObject(&m_copy), 80);
    EXPECT_EQ(Lines().back(), "Copy from " + Ends("s", "t") + " failed EC:[80].");
    EXPECT_TRUE(SystemFiles().Delete(m_files.Name()).ok);
}

TEST_F(CopyThroughFile, AFileThatBecameShorterGives30AndNoObject) {
    ServeSource();
    ServeTarget();
    for (const int turn : {1, 2, 3}) {
        m_log.Clear();
        const std::size_t aborts = Count("DELETE", "uploadId=u");
        m_files.ReadShort(turn);
        ExpectFailed(30);
        EXPECT_EQ(m_log.CountContaining("[SYNC]:[AwsS3Store::UploadFileForCopyObject]:failed to "
                                        "read file:[" +
                                        File() + "].EC:[30]."),
                  1u);
        EXPECT_EQ(Count("POST", "uploadId=u"), 0u) << "nothing was completed";
        EXPECT_EQ(Count("DELETE", "uploadId=u"), aborts + (turn > 1 ? 1 : 0))
            << "aborted, unless no part had been tried";
    }
}

TEST_F(CopyThroughFile, AnEmptyFileLeavesTheUploadOpenAndIsASuccess) {
    ServeSource();
    ServeTarget();
    m_files.emptied = true;
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    EXPECT_EQ(Count("POST", "uploads"), 1u);
    EXPECT_EQ(Count("PUT", "partNumber="), 0u);
    EXPECT_EQ(Count("POST", "uploadId=u"), 0u);
    EXPECT_EQ(Count("DELETE", ""), 0u);
    EXPECT_FALSE(m_files.LeftBehind());
    EXPECT_EQ(m_files.OpenFiles(), 0);
}

TEST_F(CopyThroughFile, APartWithoutMemoryGives14AndLeavesNeitherTheFileNorTheUpload) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "the arrays of an SDK take their memory where no test can refuse it";
    }
    ServeSource();
    ServeTarget();
    {
        const FailingAllocation failing(kSize - 2 * m_copy.m_nPartSize);  // a copy of the last part
        ExpectFailed(14);
    }
    EXPECT_EQ(Count("PUT", "partNumber="), 2u);
    EXPECT_EQ(Count("DELETE", "uploadId=u"), 1u);
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
}

TEST_F(CopyThroughFile, BuffersWithoutMemoryGive14) {
    ServeSource();
    ServeTarget();
    constexpr std::int32_t kOddBuffer = 12347;
    m_store = StoreOfProvider(6, kOddBuffer);
    m_copy.m_nPartSize = 34567;
    {
        const FailingAllocation failing(kOddBuffer);
        ExpectFailed(14);
    }
    EXPECT_EQ(m_log.CountContaining("[AwsS3Store::DownloadFileForCopyObject]Failed to allocate "
                                    "buffer, size: 12347."),
              1u);
    EXPECT_EQ(Count("GET", ""), 0u);
    {
        const FailingAllocation failing(34567);
        ExpectFailed(14);
    }
    EXPECT_EQ(Count("POST", "uploads"), 0u) << "no upload was opened";
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
}

TEST_F(CopyThroughFile, AResetOnEachWayIsMadeUpForWithEveryByte) {
    m_server.On("GET", "/source-bucket/s")
        .Once(Answer::Status(206).Body(m_bytes.substr(0, 65536)).Reset(Place::BodyByte(30000)));
    m_server.On("PUT", "/target-bucket/t?partNumber=2")
        .Once(Answer::Status(200).Reset(Place::RequestByte(50000)));
    ServeSource();
    ServeTarget();
    EXPECT_EQ(m_store->CopyObject(&m_copy), 0);
    EXPECT_EQ(m_server.Faults(Fault::reset), 2);
    std::string sent;
    for (const RecordedRequest& request : m_server.Requests()) {
        if (request.complete && request.target.find("partNumber=") != std::string::npos) {
            sent += request.body;
        }
    }
    EXPECT_TRUE(sent == m_bytes);
    EXPECT_FALSE(m_files.LeftBehind());
}

TEST_F(CopyThroughFile, AServerThatDiesOnEachWayLeavesNoFile) {
    const int lost = StatusOf(Aws::S3::S3Errors::NETWORK_CONNECTION);
    auto download = m_server.On("GET", "/source-bucket/s");
    m_server.On("PUT", "/target-bucket/t?partNumber=2")
        .Always(Answer::Status(200).Reset(Place::AnswerByte(0)));
    ServeSource();
    ServeTarget();
    ExpectFailed(lost);
    EXPECT_EQ(Count("DELETE", "uploadId=u"), 1u);
    EXPECT_EQ(Count("POST", "uploadId=u"), 0u);
    download.Always(Answer::Status(206).Reset(Place::AnswerByte(0)));
    ExpectFailed(lost);
    EXPECT_EQ(Count("POST", "uploads"), 1u) << "only the first copy opened one";
}

TEST_F(CopyThroughFile, ConcurrentCopiesUseFilesOfTheirOwn) {
    ServeSource();
    ServeTarget();
    std::vector<std::thread> hosts;
    std::atomic<int> good{0};
    for (int host = 0; host < 4; ++host) {
        hosts.emplace_back([&] {
            const auto store = StoreOfProvider(6);
            CloudStoreCopyObjectContext copy = m_copy;
            good += store->CopyObject(&copy) == 0 ? 1 : 0;
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
    EXPECT_EQ(good, 4);
    EXPECT_EQ(m_files.OpenFiles(), 0);
    EXPECT_EQ(m_files.Names().size(), 4u);
    for (const std::wstring& name : m_files.Names()) {
        EXPECT_FALSE(SystemFiles().Exists(name));
    }
    int whole = 0;
    for (const RecordedRequest& request : m_server.Requests()) {
        if (request.target.find("partNumber=1") != std::string::npos) {
            whole += request.body == m_bytes.substr(0, 100000) ? 1 : 0;
        }
    }
    EXPECT_EQ(whole, 4);
}

// They read through the store's one buffer.
TEST_F(CopyThroughFile, CopiesOfOneStoreKeepTheirBytesApart) {
    constexpr int kCopies = 8;
    std::vector<std::thread> hosts;
    for (char name = 'a'; name < 'a' + kCopies; ++name) {
        const std::string key(1, name);
        ServeSource(key, std::string(kSize, name));
        ServeTarget(key, "u" + key);
    }
    for (char name = 'a'; name < 'a' + kCopies; ++name) {
        hosts.emplace_back([this, key = std::string(1, name)] {
            CloudStoreCopyObjectContext copy = m_copy;
            copy.m_pszSrcKey = copy.m_pszDstKey = key.c_str();
            EXPECT_EQ(m_store->CopyObject(&copy), 0);
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
    for (char name = 'a'; name < 'a' + kCopies; ++name) {
        EXPECT_TRUE(SentTo(std::string(1, name)) == std::string(kSize, name)) << name;
    }
}

TEST_F(CopyThroughFile, SizesThatWouldLoopForEverGive87BeforeAnythingIsCreated) {
    ServeSource();
    for (const std::uint64_t partSize :
         {std::uint64_t{1} << 32, (std::uint64_t{1} << 32) + 0x80000000u,
          std::uint64_t{0x80000000u}}) {
        m_copy.m_nSrcSize = partSize + 1;
        m_copy.m_nPartSize = partSize;
        ExpectFailed(87);
    }
    m_copy.m_nSrcSize = kSize;
    m_copy.m_nPartSize = 1000;
    m_store = StoreOfProvider(6, 0);
    ExpectFailed(87);
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_EQ(m_files.Name(), L"");
}

}  // namespace
}  // namespace Mirqos::Test
