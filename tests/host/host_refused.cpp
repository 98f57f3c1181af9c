// A host whose service is gone: every operation that sends a request to a port where nothing
// listens comes back with an error once its attempts are spent, and none waits for ever.

#include <mirqos/mirqos.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Check.h"
#include "OneAnswerServer.h"

namespace {

constexpr char kNobody[] = "127.0.0.1:1";
constexpr char kBucket[] = "nobodys-bucket";
constexpr char kKey[] = "nobodys-key";
constexpr char kUpload[] = "nobodys-upload";
constexpr std::int32_t kPartNumber = 1;
const unsigned char kBytes[] = {1, 2, 3};

template <class Context>
Context OfBucket() {
    Context context;
    context.m_pszBucket = kBucket;
    return context;
}

template <class Context>
Context OfKey() {
    auto context = OfBucket<Context>();
    context.m_pszKey = kKey;
    return context;
}

template <class Context>
Context OfUpload() {
    auto context = OfKey<Context>();
    context.m_pszUploadId = kUpload;
    return context;
}

/// An operation, or several that belong together. Returns whether the caller was told of the
/// failure.
struct Operation {
    const char* name;
    std::function<bool(MIRQOSInterface&)> call;
    std::int32_t provider = 0;
};

CloudStoreReadObjectContext ReadInto(unsigned char (&buffer)[16]) {
    auto read = OfKey<CloudStoreReadObjectContext>();
    read.m_pBuf = buffer;
    read.m_nReadLen = sizeof buffer;
    read.m_nReadSize = 0;
    read.m_nRangeStart = 0;
    read.m_nRangeEnd = sizeof buffer - 1;
    return read;
}

CloudStoreCopyObjectContext CopyOf(std::uint64_t size) {
    CloudStoreCopyObjectContext copy;
    copy.m_pszSrcBucket = copy.m_pszDstBucket = kBucket;
    copy.m_pszSrcKey = kKey;
    copy.m_pszDstKey = "nobodys-copy";
    copy.m_bIgnoreMissingSource = true;
    copy.m_nSrcSize = size;
    return copy;
}

std::vector<Operation> ObjectOperations() {
    return {
        {"WriteObject",
         [](MIRQOSInterface& store) {
             auto write = OfKey<CloudStoreWriteObjectContext>();
             write.m_pBuf = kBytes;
             write.m_nBufLen = sizeof kBytes;
             return store.WriteObject(&write) != 0;
         }},
        {"ReadObject",
         [](MIRQOSInterface& store) {
             unsigned char buffer[16];
             auto read = ReadInto(buffer);
             return store.ReadObject(&read) != 0;
         }},
        {"WaitForReadObjectAsync",
         [](MIRQOSInterface& store) {
             unsigned char buffers[3][16];
             auto read = ReadInto(buffers[0]);
             bool started = true;
             for (auto& buffer : buffers) {
                 read = ReadInto(buffer);
                 started = store.ReadObjectAsync(&read) == 0 && started;
             }
             return started && store.WaitForReadObjectAsync(&read) != 0;
         }},
        {"CopyObject",
         [](MIRQOSInterface& store) {
             auto copy = CopyOf(0);
             return store.CopyObject(&copy) != 0 && !copy.m_bSourceMissing;
         }},
        {"CopyObject through a file",
         [](MIRQOSInterface& store) {
             auto copy = CopyOf(std::uint64_t{20} << 20);
             return store.CopyObject(&copy) != 0 && !copy.m_bSourceMissing;
         },
         6},
        {"ListObjects",
         [](MIRQOSInterface& store) {
             auto listing = OfBucket<CloudStoreListObjectConext>();
             return store.ListObjects(&listing) != 0;
         }},
        {"ListObjectsSegmented",
         [](MIRQOSInterface& store) {
             auto listing = OfBucket<CloudStoreListObjectConext>();
             return store.ListObjectsSegmented(&listing) != 0;
         }},
        {"DeleteObject",
         [](MIRQOSInterface& store) {
             auto deletion = OfKey<CloudStoreDeleteObjectContext>();
             return store.DeleteObject(&deletion) != 0;
         }},
        {"DeleteObjectsV2",
         [](MIRQOSInterface& store) {
             auto deletions = OfBucket<CloudStoreDeleteObjectsContextV2>();
             deletions.m_pKeys = "one\0two\0";
             return store.DeleteObjectsV2(&deletions) != 0;
         }},
        {"DeleteObjectsV2 one by one",
         [](MIRQOSInterface& store) {
             auto deletions = OfBucket<CloudStoreDeleteObjectsContextV2>();
             deletions.m_pKeys = "one\0";
             // An object that cannot be looked for is passed over.
             return store.DeleteObjectsV2(&deletions) == 0;
         },
         6},
        {"HeadObject",
         [](MIRQOSInterface& store) {
             auto head = OfKey<CloudStoreHeadObjectConext>();
             return store.HeadObject(&head) != 0 && !head.m_bExists;
         }},
        {"SearchObject",
         [](MIRQOSInterface& store) {
             auto search = OfKey<CloudStoreSearchObjectConext>();
             return store.SearchObject(&search) != 0;
         }},
        {"PutObjectTagging",
         [](MIRQOSInterface& store) {
             auto tags = OfKey<PutObjectTaggingContext>();
             tags.m_pTags = "kind:test\0";
             return store.PutObjectTagging(&tags) != 0;
         }},
        {"GetObjectTagging",
         [](MIRQOSInterface& store) {
             auto tags = OfKey<GetObjectTaggingContext>();
             return store.GetObjectTagging(&tags) != 0;
         }},
    };
}

std::vector<Operation> BucketOperations() {
    return {
        {"CreateBucket",
         [](MIRQOSInterface& store) {
             auto creation = OfBucket<CloudStoreCreateBucketContext>();
             return store.CreateBucket(&creation) != 0;
         }},
        {"DeleteBucket",
         [](MIRQOSInterface& store) {
             auto deletion = OfBucket<CloudStoreDeleteBucketContext>();
             return store.DeleteBucket(&deletion) != 0;
         }},
        {"ListBucket",
         [](MIRQOSInterface& store) {
             CloudStoreListBucketContext buckets;
             return store.ListBucket(&buckets) != 0;
         }},
        {"HeadBucket",
         [](MIRQOSInterface& store) {
             auto head = OfBucket<CloudStoreHeadBucketConext>();
             head.m_bExists = true;
             // It answers with m_bExists and not with its status.
             return store.HeadBucket(&head) == 0 && !head.m_bExists;
         }},
        {"GetBucketLocation",
         [](MIRQOSInterface& store) {
             char location[260];
             return store.GetBucketLocation(kBucket, location, sizeof location) != 0;
         }},
        {"ListMultipartUploads",
         [](MIRQOSInterface& store) {
             auto uploads = OfBucket<CloudStoreListPartContext>();
             uploads.m_pszPrefix = "";
             return store.ListMultipartUploads(&uploads) != 0 && uploads.m_lstParts.empty();
         }},
        {"PutBucketLifecycleConfiguration",
         [](MIRQOSInterface& store) {
             auto lifecycle = OfBucket<LifecycleConfigContext>();
             lifecycle.m_pszPrefix = "nobodys-";
             lifecycle.m_nDays = 1;
             return store.PutBucketLifecycleConfiguration(&lifecycle) != 0;
         }},
        {"InitMultiPartUpload",
         [](MIRQOSInterface& store) {
             auto init = OfKey<CloudStoreInitMultiPartUploadContext>();
             CloudStoreInitMultiPartUploadOutcome outcome;
             return store.InitMultiPartUpload(&init, &outcome) != 0;
         }},
    };
}

CloudStoreMultiPartUploadContext Part(std::uint64_t number, bool last) {
    auto part = OfUpload<CloudStoreMultiPartUploadContext>();
    part.m_nPartNumber = number;
    part.m_pBuf = kBytes;
    part.m_nBufLen = sizeof kBytes;
    part.m_bLastPart = last;
    return part;
}

CloudStoreFinishMultiPartUploadContext FinishOf(std::int32_t parts) {
    auto finish = OfUpload<CloudStoreFinishMultiPartUploadContext>();
    finish.m_nPartCount = parts;
    return finish;
}

/// Each with an upload that was opened before the service went.
std::vector<Operation> UploadOperations() {
    return {
        {"MultiPartUpload",
         [](MIRQOSInterface& store) {
             auto part = Part(kPartNumber, true);
             return store.MultiPartUpload(&part) != 0;
         }},
        {"MultiPartCopy",
         [](MIRQOSInterface& store) {
             auto copy = OfUpload<CloudStoreMultiPartCopyContext>();
             copy.m_pszCopySource = "nobodys-bucket/nobodys-source";
             copy.m_nRangeStart = 0;
             copy.m_nRangeEnd = 2;
             copy.m_nPartNumber = kPartNumber;
             return store.MultiPartCopy(&copy) != 0;
         }},
        {"FinishMultiPartUpload",
         [](MIRQOSInterface& store) {
             auto finish = FinishOf(1);
             return store.FinishMultiPartUpload(&finish) != 0;
         }},
        {"FinishMultiPartUploadAsync",
         [](MIRQOSInterface& store) {
             constexpr int parts = 3;
             bool started = true;
             for (std::uint64_t number = 1; number <= parts; ++number) {
                 auto part = Part(number, number == parts);
                 started = store.DoMultiPartUploadAsync(&part) == 0 && started;
             }
             auto finish = FinishOf(parts);
             return started && store.FinishMultiPartUploadAsync(&finish) != 0;
         }},
        {"FinishMultiPartUploadAsync of no part",
         [](MIRQOSInterface& store) {
             auto finish = FinishOf(0);
             return store.FinishMultiPartUploadAsync(&finish) != 0;
         }},
        {"AbortMultiPartUpload",
         [](MIRQOSInterface& store) {
             auto abort = OfUpload<CloudStoreAbortMultiPartUploadContext>();
             return store.AbortMultiPartUpload(&abort) != 0;
         }},
        {"the store's release with parts on their way",
         [](MIRQOSInterface& store) {
             auto part = Part(kPartNumber, true);
             return store.DoMultiPartUploadAsync(&part) == 0;
         }},
    };
}

struct StoreRelease {
    void operator()(MIRQOSInterface* store) const { ReleaseCloudStoreInterface(store); }
};
using StorePointer = std::unique_ptr<MIRQOSInterface, StoreRelease>;

StorePointer StoreAt(const std::string& endPoint, std::int32_t provider) {
    StorePointer store(CreateCloudStoreInterface(nullptr));
    CloudStoreConfigInfo config;
    config.m_pszBucket = kBucket;
    config.m_pszEndPoint = endPoint.c_str();
    config.m_pszAccessKeyId = "id";
    config.m_pszSecretKey = "secret";
    config.m_bUseHttps = 0;
    config.m_nBufferSize = 4096;
    config.m_nProviderType = provider;
    // fewer threads than calls, so that some wait for their turn
    config.m_nThreadCount = 2;
    store->Init(&config);
    return store;
}

/// A store whose service opened the upload and is no more; null when it did not open it.
StorePointer StoreLeftAlone() {
    const OneAnswerServer service(200, std::string("<InitiateMultipartUploadResult><UploadId>") +
                                           kUpload + "</UploadId></InitiateMultipartUploadResult>");
    StorePointer store = StoreAt("127.0.0.1:" + std::to_string(service.Port()), 0);
    auto init = OfKey<CloudStoreInitMultiPartUploadContext>();
    CloudStoreInitMultiPartUploadOutcome outcome;
    const bool opened = store->InitMultiPartUpload(&init, &outcome) == 0 &&
                        outcome.m_szUploadId == std::string(kUpload);
    return opened ? std::move(store) : nullptr;
}

}  // namespace

int main() {
    Checks checks;
    std::mutex checksMutex;
    const MIRQOSEngineStarter engine(true, CloudStoreContext());
    // Side by side, because each backs off for half a minute between its attempts.
    std::vector<std::thread> hosts;
    const auto run = [&](const Operation& operation, StorePointer store) {
        hosts.emplace_back([&checks, &checksMutex, operation, store = std::move(store)]() mutable {
            const bool reported = store != nullptr && operation.call(*store);
            store.reset();
            const std::lock_guard<std::mutex> lock(checksMutex);
            checks.Expect(reported, std::string(operation.name) +
                                        " comes back as it should when nobody is there");
        });
    };
    for (const auto& operations : {ObjectOperations(), BucketOperations()}) {
        for (const Operation& operation : operations) {
            run(operation, StoreAt(kNobody, operation.provider));
        }
    }
    for (const Operation& operation : UploadOperations()) {
        run(operation, StoreLeftAlone());
    }
    for (std::thread& host : hosts) {
        host.join();
    }
    return checks.ExitCode("host_refused");
}
