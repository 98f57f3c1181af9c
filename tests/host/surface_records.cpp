#include <mirqos/mirqos.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <list>
#include <memory>
#include <utility>

#include "Surface.h"

// Sizes, types and places are written down here a second time, apart from the library's own
// assertions, as a host sees them; the places are those of the members of a real record.

namespace {

template <class Type, class Record>
void CheckMember(Checks& checks, const Record& record, Type Record::*member, const char* name,
                 std::size_t place) {
    const auto* const begin = reinterpret_cast<const char*>(&record);
    const auto* const at = reinterpret_cast<const char*>(std::addressof(record.*member));
    checks.ExpectEqual(static_cast<std::size_t>(at - begin), place, name);
}

#define RECORD(Record, size)                   \
    using R = Record;                          \
    const auto record = std::make_unique<R>(); \
    checks.ExpectEqual(sizeof(R), std::size_t{size}, "size of " #Record)

#define MEMBER(member, place, ...) \
    CheckMember<__VA_ARGS__>(checks, *record, &R::member, #member, place)

void CheckCloudStoreContext(Checks& checks) {
    RECORD(CloudStoreContext, (4));
    MEMBER(m_nLogLevel, 0, std::int32_t);
}

void CheckCloudStoreConfigInfo(Checks& checks) {
    RECORD(CloudStoreConfigInfo, (56));
    MEMBER(m_pszRegion, 0, const char*);
    MEMBER(m_pszBucket, 8, const char*);
    MEMBER(m_pszAccessKeyId, 16, const char*);
    MEMBER(m_pszSecretKey, 24, const char*);
    MEMBER(m_pszEndPoint, 32, const char*);
    MEMBER(m_bUseHttps, 40, std::int32_t);
    MEMBER(m_nBufferSize, 44, std::int32_t);
    MEMBER(m_nThreadCount, 48, std::int32_t);
    MEMBER(m_nProviderType, 52, std::int32_t);
}

void CheckCloudStoreWriteObjectContext(Checks& checks) {
    RECORD(CloudStoreWriteObjectContext, (48));
    MEMBER(m_pszKey, 0, const char*);
    MEMBER(m_pszBucket, 8, const char*);
    MEMBER(m_pBuf, 16, const unsigned char*);
    MEMBER(m_nBufLen, 24, std::uint64_t);
    MEMBER(m_nReserved1, 32, std::uint64_t);
    MEMBER(m_nReserved2, 40, std::int32_t);
}

void CheckCloudStoreReadObjectContext(Checks& checks) {
    RECORD(CloudStoreReadObjectContext, (56));
    MEMBER(m_pszKey, 0, const char*);
    MEMBER(m_pBuf, 8, unsigned char*);
    MEMBER(m_pszBucket, 16, const char*);
    MEMBER(m_nReadLen, 24, std::uint64_t);
    MEMBER(m_nReadSize, 32, std::uint64_t);
    MEMBER(m_nRangeStart, 40, std::uint64_t);
    MEMBER(m_nRangeEnd, 48, std::uint64_t);
}

void CheckCloudStoreCopyObjectContext(Checks& checks) {
    RECORD(CloudStoreCopyObjectContext, (56));
    MEMBER(m_pszSrcBucket, 0, const char*);
    MEMBER(m_pszDstBucket, 8, const char*);
    MEMBER(m_pszSrcKey, 16, const char*);
    MEMBER(m_pszDstKey, 24, const char*);
    MEMBER(m_bIgnoreMissingSource, 32, bool);
    MEMBER(m_bSourceMissing, 33, bool);
    MEMBER(m_nSrcSize, 40, std::uint64_t);
    MEMBER(m_nPartSize, 48, std::uint64_t);
}

void CheckCloudStoreListObjectConext(Checks& checks) {
    RECORD(CloudStoreListObjectConext, (312));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pReserved1, 8, void*);
    MEMBER(m_pReserved2, 16, void*);
    MEMBER(m_pszPrefix, 24, const char*);
    MEMBER(m_pObjects, 32, CloudStoreObjInfo*);
    MEMBER(m_nObjectCount, 40, std::uint64_t);
    MEMBER(m_bTruncated, 48, bool);
    MEMBER(m_szContinuationToken, 49, char[260]);
    MEMBER(m_bCheckProviderMarker, 309, bool);
}

void CheckCloudStoreObjInfo(Checks& checks) {
    RECORD(CloudStoreObjInfo, (1032));
    MEMBER(m_nSize, 0, std::uint64_t);
    MEMBER(m_szKey, 8, char[1024]);
}

void CheckCloudStoreDeleteObjectContext(Checks& checks) {
    RECORD(CloudStoreDeleteObjectContext, (16));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pszKey, 8, const char*);
}

void CheckCloudStoreDeleteObjectsContextV2(Checks& checks) {
    RECORD(CloudStoreDeleteObjectsContextV2, (16));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pKeys, 8, const char*);
}

void CheckCloudStoreCreateBucketContext(Checks& checks) {
    RECORD(CloudStoreCreateBucketContext, (16));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pszRegion, 8, const char*);
}

void CheckCloudStoreDeleteBucketContext(Checks& checks) {
    RECORD(CloudStoreDeleteBucketContext, (8));
    MEMBER(m_pszBucket, 0, const char*);
}

void CheckCloudStoreListBucketContext(Checks& checks) {
    RECORD(CloudStoreListBucketContext, (8));
    MEMBER(m_pBucketNames, 0, const char*);
}

void CheckCloudStoreHeadBucketConext(Checks& checks) {
    RECORD(CloudStoreHeadBucketConext, (16));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_bExists, 8, bool);
}

void CheckCloudStoreHeadObjectConext(Checks& checks) {
    RECORD(CloudStoreHeadObjectConext, (24));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pszKey, 8, const char*);
    MEMBER(m_bExists, 16, bool);
}

void CheckCloudStoreSearchObjectConext(Checks& checks) {
    RECORD(CloudStoreSearchObjectConext, (24));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pszKey, 8, const char*);
    MEMBER(m_bExists, 16, bool);
}

void CheckCloudStoreListPartContext(Checks& checks) {
    RECORD(CloudStoreListPartContext, (280 + sizeof(std::list<MultiPartInfo>)));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pszPrefix, 8, const char*);
    MEMBER(m_szKeyMarker, 16, char[260]);
    MEMBER(m_lstParts, 280, std::list<MultiPartInfo>);
}

void CheckMultiPartInfo(Checks& checks) {
    RECORD(MultiPartInfo, (520));
    MEMBER(m_szKey, 0, char[260]);
    MEMBER(m_szUploadId, 260, char[260]);
}

void CheckCloudStoreInitMultiPartUploadContext(Checks& checks) {
    RECORD(CloudStoreInitMultiPartUploadContext, (24));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pszKey, 8, const char*);
    MEMBER(m_nPartSize, 16, std::uint64_t);
}

void CheckCloudStoreInitMultiPartUploadOutcome(Checks& checks) {
    RECORD(CloudStoreInitMultiPartUploadOutcome, (260));
    MEMBER(m_szUploadId, 0, char[260]);
}

void CheckCloudStoreMultiPartUploadContext(Checks& checks) {
    RECORD(CloudStoreMultiPartUploadContext, (48));
    MEMBER(m_pszUploadId, 0, const char*);
    MEMBER(m_pszKey, 8, const char*);
    MEMBER(m_pszBucket, 16, const char*);
    MEMBER(m_nPartNumber, 24, std::uint64_t);
    MEMBER(m_pBuf, 32, const unsigned char*);
    MEMBER(m_nBufLen, 40, std::int32_t);
    MEMBER(m_bLastPart, 44, bool);
}

void CheckCloudStoreMultiPartCopyContext(Checks& checks) {
    RECORD(CloudStoreMultiPartCopyContext, (64));
    MEMBER(m_pszUploadId, 0, const char*);
    MEMBER(m_pszKey, 8, const char*);
    MEMBER(m_pszBucket, 16, const char*);
    MEMBER(m_pszCopySource, 24, const char*);
    MEMBER(m_nRangeStart, 32, std::uint64_t);
    MEMBER(m_nRangeEnd, 40, std::uint64_t);
    MEMBER(m_nPartNumber, 48, std::uint64_t);
    MEMBER(m_bReserved, 56, bool);
}

void CheckCloudStoreFinishMultiPartUploadContext(Checks& checks) {
    RECORD(CloudStoreFinishMultiPartUploadContext, (32));
    MEMBER(m_pszUploadId, 0, const char*);
    MEMBER(m_pszBucket, 8, const char*);
    MEMBER(m_pszKey, 16, const char*);
    MEMBER(m_nPartCount, 24, std::int32_t);
}

void CheckCloudStoreAbortMultiPartUploadContext(Checks& checks) {
    RECORD(CloudStoreAbortMultiPartUploadContext, (24));
    MEMBER(m_pszUploadId, 0, const char*);
    MEMBER(m_pszBucket, 8, const char*);
    MEMBER(m_pszKey, 16, const char*);
}

void CheckLifecycleConfigContext(Checks& checks) {
    RECORD(LifecycleConfigContext, (32));
    MEMBER(m_pszRuleId, 0, const char*);
    MEMBER(m_pszBucket, 8, const char*);
    MEMBER(m_pszPrefix, 16, const char*);
    MEMBER(m_nDays, 24, std::int32_t);
}

void CheckPutObjectTaggingContext(Checks& checks) {
    RECORD(PutObjectTaggingContext, (24));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pszKey, 8, const char*);
    MEMBER(m_pTags, 16, const char*);
}

void CheckGetObjectTaggingContext(Checks& checks) {
    RECORD(GetObjectTaggingContext, (2616));
    MEMBER(m_pszBucket, 0, const char*);
    MEMBER(m_pszKey, 8, const char*);
    MEMBER(m_szTags, 16, char[2600]);
}

// The constructors, assignments and destructor that this host calls are the library's.
void CheckValues(Checks& checks) {
    CloudStoreConfigInfo config;
    config.m_pszRegion = "region";
    config.m_nThreadCount = 7;
    CloudStoreConfigInfo copied;
    copied = config;
    CloudStoreConfigInfo moved;
    moved = std::move(copied);
    checks.ExpectEqual(std::string(moved.m_pszRegion), "region", "a text after copy and move");
    checks.ExpectEqual(moved.m_nThreadCount, 7, "a number after copy and move");
    checks.ExpectEqual(moved.m_bUseHttps, 1, "a default after copy and move");

    CloudStoreListPartContext uploads;
    for (int i = 0; i < 3; ++i) {
        uploads.m_lstParts.emplace_back();
    }
    CloudStoreListPartContext listCopy(uploads);
    CloudStoreListPartContext assigned;
    assigned = listCopy;
    CloudStoreListPartContext listMoved(std::move(listCopy));
    listMoved = std::move(assigned);
    checks.ExpectEqual(listMoved.m_lstParts.size(), 3u, "a list after copies and moves");
    checks.ExpectEqual(listCopy.m_lstParts.size() + assigned.m_lstParts.size(), 0u,
                       "lists that were moved from");
}

}  // namespace

void CheckRecords(Checks& checks) {
    CheckCloudStoreContext(checks);
    CheckCloudStoreConfigInfo(checks);
    CheckCloudStoreWriteObjectContext(checks);
    CheckCloudStoreReadObjectContext(checks);
    CheckCloudStoreCopyObjectContext(checks);
    CheckCloudStoreListObjectConext(checks);
    CheckCloudStoreObjInfo(checks);
    CheckCloudStoreDeleteObjectContext(checks);
    CheckCloudStoreDeleteObjectsContextV2(checks);
    CheckCloudStoreCreateBucketContext(checks);
    CheckCloudStoreDeleteBucketContext(checks);
    CheckCloudStoreListBucketContext(checks);
    CheckCloudStoreHeadBucketConext(checks);
    CheckCloudStoreHeadObjectConext(checks);
    CheckCloudStoreSearchObjectConext(checks);
    CheckCloudStoreListPartContext(checks);
    CheckMultiPartInfo(checks);
    CheckCloudStoreInitMultiPartUploadContext(checks);
    CheckCloudStoreInitMultiPartUploadOutcome(checks);
    CheckCloudStoreMultiPartUploadContext(checks);
    CheckCloudStoreMultiPartCopyContext(checks);
    CheckCloudStoreFinishMultiPartUploadContext(checks);
    CheckCloudStoreAbortMultiPartUploadContext(checks);
    CheckLifecycleConfigContext(checks);
    CheckPutObjectTaggingContext(checks);
    CheckGetObjectTaggingContext(checks);
    CheckValues(checks);
}
