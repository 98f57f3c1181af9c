// A host whose service does not answer: every operation that sends a request to a port where
// nothing listens comes back with an error once its attempts are spent.

#include <mirqos/mirqos.h>

#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Check.h"

namespace {

/// Each returns whether the operation told its caller about the failure.
using Operation = bool (*)(MIRQOSInterface&);

constexpr char kNobody[] = "127.0.0.1:1";
constexpr char kBucket[] = "nobodys-bucket";
constexpr char kKey[] = "nobodys-key";
const unsigned char kBytes[] = {1, 2, 3};

bool Write(MIRQOSInterface& store) {
    CloudStoreWriteObjectContext context;
    context.m_pszBucket = kBucket;
    context.m_pszKey = kKey;
    context.m_pBuf = kBytes;
    context.m_nBufLen = sizeof kBytes;
    return 0 != store.WriteObject(&context);
}

bool Read(MIRQOSInterface& store) {
    unsigned char buffer[16];
    CloudStoreReadObjectContext context;
    context.m_pszBucket = kBucket;
    context.m_pszKey = kKey;
    context.m_pBuf = buffer;
    context.m_nReadLen = sizeof buffer;
    context.m_nRangeEnd = sizeof buffer - 1;
    return 0 != store.ReadObject(&context);
}

bool Delete(MIRQOSInterface& store) {
    CloudStoreDeleteObjectContext context;
    context.m_pszBucket = kBucket;
    context.m_pszKey = kKey;
    return 0 != store.DeleteObject(&context);
}

bool CreateBucket(MIRQOSInterface& store) {
    CloudStoreCreateBucketContext context;
    context.m_pszBucket = kBucket;
    return 0 != store.CreateBucket(&context);
}

bool List(MIRQOSInterface& store) {
    CloudStoreListObjectConext context;
    context.m_pszBucket = kBucket;
    return 0 != store.ListObjects(&context);
}

bool DeleteMany(MIRQOSInterface& store) {
    CloudStoreDeleteObjectsContextV2 context;
    context.m_pszBucket = kBucket;
    context.m_pKeys = "one\0two\0";
    return 0 != store.DeleteObjectsV2(&context);
}

bool ListBuckets(MIRQOSInterface& store) {
    CloudStoreListBucketContext context;
    return 0 != store.ListBucket(&context);
}

bool GetTags(MIRQOSInterface& store) {
    GetObjectTaggingContext context;
    context.m_pszBucket = kBucket;
    context.m_pszKey = kKey;
    return 0 != store.GetObjectTagging(&context);
}

bool Locate(MIRQOSInterface& store) {
    char location[260];
    return 0 != store.GetBucketLocation(kBucket, location, sizeof location);
}

bool HeadBucket(MIRQOSInterface& store) {
    CloudStoreHeadBucketConext context;
    context.m_pszBucket = kBucket;
    context.m_bExists = true;
    // It answers with m_bExists and not with its status.
    return store.HeadBucket(&context) == 0 && !context.m_bExists;
}

}  // namespace

int main() {
    Checks checks;
    std::mutex checksMutex;
    const MIRQOSEngineStarter engine(true, CloudStoreContext());
    const std::pair<const char*, Operation> operations[] = {
        {"WriteObject", Write},          {"ReadObject", Read},        {"DeleteObject", Delete},
        {"CreateBucket", CreateBucket},  {"HeadBucket", HeadBucket},  {"ListObjects", List},
        {"DeleteObjectsV2", DeleteMany}, {"ListBucket", ListBuckets}, {"GetObjectTagging", GetTags},
        {"GetBucketLocation", Locate},
    };
    // Side by side, because each backs off for half a minute between its attempts.
    std::vector<std::thread> hosts;
    for (const auto& operation : operations) {
        hosts.emplace_back([&checks, &checksMutex, operation] {
            MIRQOSInterface* const store = CreateCloudStoreInterface(nullptr);
            CloudStoreConfigInfo config;
            config.m_pszEndPoint = kNobody;
            config.m_pszAccessKeyId = "id";
            config.m_pszSecretKey = "secret";
            config.m_bUseHttps = 0;
            config.m_nBufferSize = 4096;
            store->Init(&config);
            const bool reported = operation.second(*store);
            ReleaseCloudStoreInterface(store);
            const std::lock_guard<std::mutex> lock(checksMutex);
            checks.Expect(reported, std::string(operation.first) + " reports that nobody is there");
        });
    }
    for (std::thread& host : hosts) {
        host.join();
    }
    return checks.ExitCode("host_refused");
}
