#include <mirqos/mirqos.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "OneAnswerServer.h"
#include "Surface.h"

namespace {

constexpr std::int32_t kUnknownUpload = -1;
constexpr std::int32_t kAccessDenied = 15;  // the SDK's number for a 403

// GCC's C++ ABI puts two destructors before the first operation, MSVC's puts one; the build says
// which it is.
constexpr int kDestructorEntries = HOST_DESTRUCTOR_ENTRIES;

/// Calls the entry at a place of the store's virtual table, as a host does that knows operations by
/// their number alone: 1 is the first after the destructor.
template <class Result, class... Arguments>
Result CallByPlace(MIRQOSInterface* store, int number, Arguments... arguments) {
    using Entry = Result (*)(MIRQOSInterface*, Arguments...);
    void* const* table = nullptr;
    std::memcpy(&table, store, sizeof table);
    return reinterpret_cast<Entry>(table[number - 1 + kDestructorEntries])(store, arguments...);
}

/// What a type deduced elsewhere is.
template <class Type>
struct Same {
    using type = Type;
};

/// How an operation shows that the server refused it.
struct Refusal {
    const char* request;    ///< what reached the server
    std::int32_t status;    ///< what the caller got
    std::uint64_t counted;  ///< by how much the store's request count went up
};

class Session {
public:
    explicit Session(Checks& checks) : m_checks(checks) {
        const std::string endPoint = "127.0.0.1:" + std::to_string(m_server.Port());
        CloudStoreConfigInfo config;
        config.m_pszRegion = "host-region";
        config.m_pszBucket = "host-bucket";
        config.m_pszAccessKeyId = "host-id";
        config.m_pszSecretKey = "host-secret";
        config.m_pszEndPoint = endPoint.c_str();
        config.m_bUseHttps = 0;
        config.m_nBufferSize = 4096;
        config.m_nThreadCount = 2;
        m_checks.ExpectEqual(CallByPlace<std::int32_t>(m_store, 1, &config), 0, "Init by place");
        // On a store of its own, since a second Init leaves the first client behind by design.
        MIRQOSInterface* const other = CreateCloudStoreInterface(nullptr);
        m_checks.ExpectEqual(other->Init(&config), 0, "Init");
        ReleaseCloudStoreInterface(other);
    }
    ~Session() { ReleaseCloudStoreInterface(m_store); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    MIRQOSInterface* Store() { return m_store; }

    void Text(const char* name, int number, const char* (MIRQOSInterface::*byName)(),
              const char* expected) {
        m_checks.ExpectEqual(std::string((m_store->*byName)()), expected, name);
        m_checks.ExpectEqual(std::string(CallByPlace<const char*>(m_store, number)), expected,
                             std::string(name) + " by place");
    }

    /// An operation that sends one request, which the server refuses.
    template <class... Parameters>
    void Refused(const Refusal& refusal, const char* name, int number,
                 std::int32_t (MIRQOSInterface::*byName)(Parameters...),
                 typename Same<Parameters>::type... arguments) {
        for (const bool place : {false, true}) {
            const std::string what = std::string(name) + (place ? " by place" : "");
            const std::uint64_t count = m_store->GetRequestCount();
            m_checks.ExpectEqual(place ? CallByPlace<std::int32_t>(m_store, number, arguments...)
                                       : (m_store->*byName)(arguments...),
                                 refusal.status, what + ", status");
            const std::vector<std::string> requests = m_server.TakeRequests();
            m_checks.ExpectEqual(requests.size(), 1u, what + ", requests");
            m_checks.ExpectEqual(requests.empty() ? "" : requests[0], refusal.request, what);
            m_checks.ExpectEqual(CallByPlace<std::uint64_t>(m_store, 35), count + refusal.counted,
                                 what + ", request count");
        }
    }

    /// The two operations of an asynchronous read, which the server refuses.
    void AsyncRead(CloudStoreReadObjectContext* read) {
        for (const bool place : {false, true}) {
            const std::string what = place ? "asynchronous read by place" : "asynchronous read";
            const std::uint64_t count = m_store->GetRequestCount();
            m_checks.ExpectEqual(place ? CallByPlace<std::int32_t>(m_store, 8, read)
                                       : m_store->ReadObjectAsync(read),
                                 0, what + ", start");
            m_checks.ExpectEqual(place ? CallByPlace<std::int32_t>(m_store, 9, read)
                                       : m_store->WaitForReadObjectAsync(read),
                                 kAccessDenied, what + ", wait");
            const std::vector<std::string> requests = m_server.TakeRequests();
            m_checks.ExpectEqual(requests.size(), 1u, what + ", requests");
            m_checks.ExpectEqual(requests.empty() ? "" : requests[0], "GET /host-bucket/host-key",
                                 what);
            m_checks.ExpectEqual(m_store->GetRequestCount(), count + 1, what + ", request count");
        }
    }

    /// An operation that sends nothing. Some count a request that they then refuse themselves.
    template <class... Parameters>
    void Silent(const char* name, int number,
                std::int32_t (MIRQOSInterface::*byName)(Parameters...), std::int32_t status,
                std::uint64_t counted, typename Same<Parameters>::type... arguments) {
        const std::uint64_t count = m_store->GetRequestCount() + 2 * counted;
        m_checks.ExpectEqual((m_store->*byName)(arguments...), status, name);
        m_checks.ExpectEqual(CallByPlace<std::int32_t>(m_store, number, arguments...), status,
                             std::string(name) + " by place");
        m_checks.ExpectEqual(m_server.TakeRequests().size(), 0u, std::string(name) + ", requests");
        m_checks.ExpectEqual(m_store->GetRequestCount(), count,
                             std::string(name) + ", request count");
    }

private:
    Checks& m_checks;
    OneAnswerServer m_server;
    MIRQOSInterface* m_store = CreateCloudStoreInterface(nullptr);
};

using I = MIRQOSInterface;

const unsigned char kBytes[] = {1, 2, 3};

void CheckObjects(Session& session) {
    CloudStoreWriteObjectContext write;
    write.m_pszBucket = "host-bucket";
    write.m_pszKey = "host-key";
    write.m_pBuf = kBytes;
    write.m_nBufLen = sizeof kBytes;
    session.Refused({"PUT /host-bucket/host-key", kAccessDenied, 1}, "WriteObject", 6,
                    &I::WriteObject, &write);

    unsigned char buffer[16];
    CloudStoreReadObjectContext read;
    read.m_pszBucket = "host-bucket";
    read.m_pszKey = "host-key";
    read.m_pBuf = buffer;
    read.m_nReadLen = sizeof buffer;
    read.m_nReadSize = 0;
    read.m_nRangeEnd = sizeof buffer - 1;
    session.Refused({"GET /host-bucket/host-key", kAccessDenied, 1}, "ReadObject", 7,
                    &I::ReadObject, &read);
    session.AsyncRead(&read);

    CloudStoreCopyObjectContext copy;
    copy.m_pszSrcBucket = copy.m_pszDstBucket = "host-bucket";
    copy.m_pszSrcKey = "host-key";
    copy.m_pszDstKey = "host-copy";
    copy.m_bIgnoreMissingSource = false;
    session.Refused({"PUT /host-bucket/host-copy", kAccessDenied, 1}, "CopyObject", 10,
                    &I::CopyObject, &copy);

    CloudStoreListObjectConext listing;
    listing.m_pszBucket = "host-bucket";
    session.Refused({"GET /host-bucket?list-type=2", kAccessDenied, 1}, "ListObjects", 11,
                    &I::ListObjects, &listing);
    session.Refused({"GET /host-bucket?list-type=2", kAccessDenied, 1}, "ListObjectsSegmented", 12,
                    &I::ListObjectsSegmented, &listing);
    session.Silent("ReleaseObjectData", 13, &I::ReleaseObjectData, 0, 0, &listing);

    CloudStoreDeleteObjectContext deletion;
    deletion.m_pszBucket = "host-bucket";
    deletion.m_pszKey = "host-key";
    session.Refused({"DELETE /host-bucket/host-key", kAccessDenied, 0}, "DeleteObject", 14,
                    &I::DeleteObject, &deletion);
    CloudStoreDeleteObjectsContextV2 deletions;
    deletions.m_pszBucket = "host-bucket";
    deletions.m_pKeys = "host-key\0other-key\0";
    session.Refused({"POST /host-bucket?delete", kAccessDenied, 0}, "DeleteObjectsV2", 15,
                    &I::DeleteObjectsV2, &deletions);

    CloudStoreHeadObjectConext head;
    head.m_pszBucket = "host-bucket";
    head.m_pszKey = "host-key";
    session.Refused({"HEAD /host-bucket/host-key", kAccessDenied, 1}, "HeadObject", 21,
                    &I::HeadObject, &head);
    CloudStoreSearchObjectConext search;
    search.m_pszBucket = "host-bucket";
    search.m_pszKey = "host-";
    session.Refused({"GET /host-bucket?list-type=2&prefix=host-", kAccessDenied, 1}, "SearchObject",
                    22, &I::SearchObject, &search);

    PutObjectTaggingContext putTags;
    putTags.m_pszBucket = "host-bucket";
    putTags.m_pszKey = "host-key";
    putTags.m_pTags = "kind:test\0";
    session.Refused({"PUT /host-bucket/host-key?tagging", kAccessDenied, 1}, "PutObjectTagging", 25,
                    &I::PutObjectTagging, &putTags);
    GetObjectTaggingContext getTags;
    getTags.m_pszBucket = "host-bucket";
    getTags.m_pszKey = "host-key";
    session.Refused({"GET /host-bucket/host-key?tagging", kAccessDenied, 1}, "GetObjectTagging", 26,
                    &I::GetObjectTagging, &getTags);
}

void CheckBuckets(Checks& checks, Session& session) {
    CloudStoreCreateBucketContext creation;
    creation.m_pszBucket = "host-bucket";
    session.Refused({"PUT /host-bucket", kAccessDenied, 0}, "CreateBucket", 16, &I::CreateBucket,
                    &creation);
    CloudStoreDeleteBucketContext deletion;
    deletion.m_pszBucket = "host-bucket";
    session.Refused({"DELETE /host-bucket", kAccessDenied, 0}, "DeleteBucket", 17, &I::DeleteBucket,
                    &deletion);

    CloudStoreListBucketContext buckets;
    session.Refused({"GET /", kAccessDenied, 0}, "ListBucket", 18, &I::ListBucket, &buckets);
    session.Store()->ReleaseBucketList(&buckets);
    CallByPlace<void>(session.Store(), 19, &buckets);
    checks.Expect(buckets.m_pBucketNames == nullptr, "ReleaseBucketList of nothing");

    CloudStoreHeadBucketConext head;
    head.m_pszBucket = "host-bucket";
    head.m_bExists = true;
    session.Refused({"HEAD /host-bucket", 0, 1}, "HeadBucket", 20, &I::HeadBucket, &head);

    checks.Expect(!head.m_bExists, "HeadBucket takes a refusal for a missing bucket");

    CloudStoreListPartContext uploads;
    uploads.m_pszBucket = "host-bucket";
    uploads.m_pszPrefix = "host-";
    session.Refused({"GET /host-bucket?" HOST_UPLOADS_QUERY, kAccessDenied, 1},
                    "ListMultipartUploads", 23, &I::ListMultipartUploads, &uploads);
    LifecycleConfigContext lifecycle;
    lifecycle.m_pszBucket = "host-bucket";
    lifecycle.m_pszPrefix = "host-";
    lifecycle.m_nDays = 1;
    session.Refused({"PUT /host-bucket?lifecycle", kAccessDenied, 1},
                    "PutBucketLifecycleConfiguration", 24, &I::PutBucketLifecycleConfiguration,
                    &lifecycle);
    char location[260];
    session.Refused({"GET /host-bucket?location", kAccessDenied, 0}, "GetBucketLocation", 27,
                    &I::GetBucketLocation, "host-bucket", location, sizeof location);
}

void CheckUploads(Session& session) {
    CloudStoreInitMultiPartUploadContext init;
    init.m_pszBucket = "host-bucket";
    init.m_pszKey = "host-key";
    CloudStoreInitMultiPartUploadOutcome outcome;
    session.Refused({"POST /host-bucket/host-key?uploads", kAccessDenied, 1}, "InitMultiPartUpload",
                    28, &I::InitMultiPartUpload, &init, &outcome);

    CloudStoreMultiPartUploadContext part;
    part.m_pszBucket = "host-bucket";
    part.m_pszKey = "host-key";
    part.m_pszUploadId = "host-upload";
    part.m_nPartNumber = 1;
    part.m_pBuf = kBytes;
    part.m_nBufLen = sizeof kBytes;
    part.m_bLastPart = true;
    session.Silent("MultiPartUpload", 29, &I::MultiPartUpload, kUnknownUpload, 1, &part);

    CloudStoreMultiPartCopyContext copy;
    copy.m_pszBucket = "host-bucket";
    copy.m_pszKey = "host-key";
    copy.m_pszUploadId = "host-upload";
    copy.m_pszCopySource = "host-bucket/host-source";
    copy.m_nRangeStart = 0;
    copy.m_nRangeEnd = 2;
    copy.m_nPartNumber = 1;
    session.Silent("MultiPartCopy", 30, &I::MultiPartCopy, kUnknownUpload, 1, &copy);

    CloudStoreFinishMultiPartUploadContext finish;
    finish.m_pszBucket = "host-bucket";
    finish.m_pszKey = "host-key";
    finish.m_pszUploadId = "host-upload";
    finish.m_nPartCount = 1;
    session.Silent("FinishMultiPartUpload", 31, &I::FinishMultiPartUpload, kUnknownUpload, 1,
                   &finish);
    session.Silent("DoMultiPartUploadAsync", 32, &I::DoMultiPartUploadAsync, kUnknownUpload, 1,
                   &part);
    session.Silent("FinishMultiPartUploadAsync", 33, &I::FinishMultiPartUploadAsync, kUnknownUpload,
                   1, &finish);

    CloudStoreAbortMultiPartUploadContext abort;
    abort.m_pszBucket = "host-bucket";
    abort.m_pszKey = "host-key";
    abort.m_pszUploadId = "host-upload";
    session.Refused({"DELETE /host-bucket/host-key?uploadId=host-upload", kAccessDenied, 1},
                    "AbortMultiPartUpload", 34, &I::AbortMultiPartUpload, &abort);
}

// The deleting destructor is the last of the destructor entries. MSVC's takes a flag that says to
// free the memory too; GCC's does not look at it.
void CheckDestructor() {
    CallByPlace<void>(CreateCloudStoreInterface(nullptr), 0, 1u);
}

}  // namespace

void CheckOperations(Checks& checks) {
    const MIRQOSEngineStarter engine(true, CloudStoreContext());
    CheckDestructor();
    Session session(checks);
    session.Text("GetRegion", 2, &I::GetRegion, "host-region");
    session.Text("GetBucketName", 3, &I::GetBucketName, "host-bucket");
    session.Text("GetAccessKeyId", 4, &I::GetAccessKeyId, "host-id");
    session.Text("GetSecretKey", 5, &I::GetSecretKey, "host-secret");
    CheckObjects(session);
    CheckBuckets(checks, session);
    CheckUploads(session);
}
