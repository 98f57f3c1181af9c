#include <mirqos/records.h>

#include <cstddef>

// The binary contract with hosts: the place of every member and the size of every record. A failing
// line here means that hosts in the field would break.

static_assert(sizeof(void*) == 8, "the contract is one of 64-bit programs");

#define MEMBER_AT(Record, member, offset) static_assert(offsetof(Record, member) == (offset))
#define RECORD_SIZE(Record, size) static_assert(sizeof(Record) == (size))

MEMBER_AT(CloudStoreContext, m_nLogLevel, 0);
RECORD_SIZE(CloudStoreContext, 4);

MEMBER_AT(CloudStoreConfigInfo, m_pszRegion, 0);
MEMBER_AT(CloudStoreConfigInfo, m_pszBucket, 8);
MEMBER_AT(CloudStoreConfigInfo, m_pszAccessKeyId, 16);
MEMBER_AT(CloudStoreConfigInfo, m_pszSecretKey, 24);
MEMBER_AT(CloudStoreConfigInfo, m_pszEndPoint, 32);
MEMBER_AT(CloudStoreConfigInfo, m_bUseHttps, 40);
MEMBER_AT(CloudStoreConfigInfo, m_nBufferSize, 44);
MEMBER_AT(CloudStoreConfigInfo, m_nThreadCount, 48);
MEMBER_AT(CloudStoreConfigInfo, m_nProviderType, 52);
RECORD_SIZE(CloudStoreConfigInfo, 56);

MEMBER_AT(CloudStoreWriteObjectContext, m_pszKey, 0);
MEMBER_AT(CloudStoreWriteObjectContext, m_pszBucket, 8);
MEMBER_AT(CloudStoreWriteObjectContext, m_pBuf, 16);
MEMBER_AT(CloudStoreWriteObjectContext, m_nBufLen, 24);
MEMBER_AT(CloudStoreWriteObjectContext, m_nReserved1, 32);
MEMBER_AT(CloudStoreWriteObjectContext, m_nReserved2, 40);
RECORD_SIZE(CloudStoreWriteObjectContext, 48);

MEMBER_AT(CloudStoreReadObjectContext, m_pszKey, 0);
MEMBER_AT(CloudStoreReadObjectContext, m_pBuf, 8);
MEMBER_AT(CloudStoreReadObjectContext, m_pszBucket, 16);
MEMBER_AT(CloudStoreReadObjectContext, m_nReadLen, 24);
MEMBER_AT(CloudStoreReadObjectContext, m_nReadSize, 32);
MEMBER_AT(CloudStoreReadObjectContext, m_nRangeStart, 40);
MEMBER_AT(CloudStoreReadObjectContext, m_nRangeEnd, 48);
RECORD_SIZE(CloudStoreReadObjectContext, 56);

MEMBER_AT(CloudStoreCopyObjectContext, m_pszSrcBucket, 0);
MEMBER_AT(CloudStoreCopyObjectContext, m_pszDstBucket, 8);
MEMBER_AT(CloudStoreCopyObjectContext, m_pszSrcKey, 16);
MEMBER_AT(CloudStoreCopyObjectContext, m_pszDstKey, 24);
MEMBER_AT(CloudStoreCopyObjectContext, m_bIgnoreMissingSource, 32);
MEMBER_AT(CloudStoreCopyObjectContext, m_bSourceMissing, 33);
MEMBER_AT(CloudStoreCopyObjectContext, m_nSrcSize, 40);
MEMBER_AT(CloudStoreCopyObjectContext, m_nPartSize, 48);
RECORD_SIZE(CloudStoreCopyObjectContext, 56);

MEMBER_AT(CloudStoreObjInfo, m_nSize, 0);
MEMBER_AT(CloudStoreObjInfo, m_szKey, 8);
RECORD_SIZE(CloudStoreObjInfo, 1032);

MEMBER_AT(CloudStoreListObjectConext, m_pszBucket, 0);
MEMBER_AT(CloudStoreListObjectConext, m_pReserved1, 8);
MEMBER_AT(CloudStoreListObjectConext, m_pReserved2, 16);
MEMBER_AT(CloudStoreListObjectConext, m_pszPrefix, 24);
MEMBER_AT(CloudStoreListObjectConext, m_pObjects, 32);
MEMBER_AT(CloudStoreListObjectConext, m_nObjectCount, 40);
MEMBER_AT(CloudStoreListObjectConext, m_bTruncated, 48);
MEMBER_AT(CloudStoreListObjectConext, m_szContinuationToken, 49);
MEMBER_AT(CloudStoreListObjectConext, m_bCheckProviderMarker, 309);
RECORD_SIZE(CloudStoreListObjectConext, 312);

MEMBER_AT(CloudStoreDeleteObjectContext, m_pszBucket, 0);
MEMBER_AT(CloudStoreDeleteObjectContext, m_pszKey, 8);
RECORD_SIZE(CloudStoreDeleteObjectContext, 16);

MEMBER_AT(CloudStoreDeleteObjectsContextV2, m_pszBucket, 0);
MEMBER_AT(CloudStoreDeleteObjectsContextV2, m_pKeys, 8);
RECORD_SIZE(CloudStoreDeleteObjectsContextV2, 16);

MEMBER_AT(CloudStoreCreateBucketContext, m_pszBucket, 0);
MEMBER_AT(CloudStoreCreateBucketContext, m_pszRegion, 8);
RECORD_SIZE(CloudStoreCreateBucketContext, 16);

MEMBER_AT(CloudStoreDeleteBucketContext, m_pszBucket, 0);
RECORD_SIZE(CloudStoreDeleteBucketContext, 8);

MEMBER_AT(CloudStoreListBucketContext, m_pBucketNames, 0);
RECORD_SIZE(CloudStoreListBucketContext, 8);

MEMBER_AT(CloudStoreHeadBucketConext, m_pszBucket, 0);
MEMBER_AT(CloudStoreHeadBucketConext, m_bExists, 8);
RECORD_SIZE(CloudStoreHeadBucketConext, 16);

MEMBER_AT(CloudStoreHeadObjectConext, m_pszBucket, 0);
MEMBER_AT(CloudStoreHeadObjectConext, m_pszKey, 8);
MEMBER_AT(CloudStoreHeadObjectConext, m_bExists, 16);
RECORD_SIZE(CloudStoreHeadObjectConext, 24);

MEMBER_AT(CloudStoreSearchObjectConext, m_pszBucket, 0);
MEMBER_AT(CloudStoreSearchObjectConext, m_pszKey, 8);
MEMBER_AT(CloudStoreSearchObjectConext, m_bExists, 16);
RECORD_SIZE(CloudStoreSearchObjectConext, 24);

MEMBER_AT(MultiPartInfo, m_szKey, 0);
MEMBER_AT(MultiPartInfo, m_szUploadId, 260);
RECORD_SIZE(MultiPartInfo, 520);

MEMBER_AT(CloudStoreListPartContext, m_pszBucket, 0);
MEMBER_AT(CloudStoreListPartContext, m_pszPrefix, 8);
MEMBER_AT(CloudStoreListPartContext, m_szKeyMarker, 16);
MEMBER_AT(CloudStoreListPartContext, m_lstParts, 280);
// Its end depends on the standard library's list, which host and library have to share.
RECORD_SIZE(CloudStoreListPartContext, 280 + sizeof(std::list<MultiPartInfo>));

MEMBER_AT(CloudStoreInitMultiPartUploadContext, m_pszBucket, 0);
MEMBER_AT(CloudStoreInitMultiPartUploadContext, m_pszKey, 8);
MEMBER_AT(CloudStoreInitMultiPartUploadContext, m_nPartSize, 16);
RECORD_SIZE(CloudStoreInitMultiPartUploadContext, 24);

MEMBER_AT(CloudStoreInitMultiPartUploadOutcome, m_szUploadId, 0);
RECORD_SIZE(CloudStoreInitMultiPartUploadOutcome, 260);

MEMBER_AT(CloudStoreMultiPartUploadContext, m_pszUploadId, 0);
MEMBER_AT(CloudStoreMultiPartUploadContext, m_pszKey, 8);
MEMBER_AT(CloudStoreMultiPartUploadContext, m_pszBucket, 16);
MEMBER_AT(CloudStoreMultiPartUploadContext, m_nPartNumber, 24);
MEMBER_AT(CloudStoreMultiPartUploadContext, m_pBuf, 32);
MEMBER_AT(CloudStoreMultiPartUploadContext, m_nBufLen, 40);
MEMBER_AT(CloudStoreMultiPartUploadContext, m_bLastPart, 44);
RECORD_SIZE(CloudStoreMultiPartUploadContext, 48);

MEMBER_AT(CloudStoreMultiPartCopyContext, m_pszUploadId, 0);
MEMBER_AT(CloudStoreMultiPartCopyContext, m_pszKey, 8);
MEMBER_AT(CloudStoreMultiPartCopyContext, m_pszBucket, 16);
MEMBER_AT(CloudStoreMultiPartCopyContext, m_pszCopySource, 24);
MEMBER_AT(CloudStoreMultiPartCopyContext, m_nRangeStart, 32);
MEMBER_AT(CloudStoreMultiPartCopyContext, m_nRangeEnd, 40);
MEMBER_AT(CloudStoreMultiPartCopyContext, m_nPartNumber, 48);
MEMBER_AT(CloudStoreMultiPartCopyContext, m_bReserved, 56);
RECORD_SIZE(CloudStoreMultiPartCopyContext, 64);

MEMBER_AT(CloudStoreFinishMultiPartUploadContext, m_pszUploadId, 0);
MEMBER_AT(CloudStoreFinishMultiPartUploadContext, m_pszBucket, 8);
MEMBER_AT(CloudStoreFinishMultiPartUploadContext, m_pszKey, 16);
MEMBER_AT(CloudStoreFinishMultiPartUploadContext, m_nPartCount, 24);
RECORD_SIZE(CloudStoreFinishMultiPartUploadContext, 32);

MEMBER_AT(CloudStoreAbortMultiPartUploadContext, m_pszUploadId, 0);
MEMBER_AT(CloudStoreAbortMultiPartUploadContext, m_pszBucket, 8);
MEMBER_AT(CloudStoreAbortMultiPartUploadContext, m_pszKey, 16);
RECORD_SIZE(CloudStoreAbortMultiPartUploadContext, 24);

MEMBER_AT(LifecycleConfigContext, m_pszRuleId, 0);
MEMBER_AT(LifecycleConfigContext, m_pszBucket, 8);
MEMBER_AT(LifecycleConfigContext, m_pszPrefix, 16);
MEMBER_AT(LifecycleConfigContext, m_nDays, 24);
RECORD_SIZE(LifecycleConfigContext, 32);

MEMBER_AT(PutObjectTaggingContext, m_pszBucket, 0);
MEMBER_AT(PutObjectTaggingContext, m_pszKey, 8);
MEMBER_AT(PutObjectTaggingContext, m_pTags, 16);
RECORD_SIZE(PutObjectTaggingContext, 24);

MEMBER_AT(GetObjectTaggingContext, m_pszBucket, 0);
MEMBER_AT(GetObjectTaggingContext, m_pszKey, 8);
MEMBER_AT(GetObjectTaggingContext, m_szTags, 16);
RECORD_SIZE(GetObjectTaggingContext, 2616);
