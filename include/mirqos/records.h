#ifndef MIRQOS_RECORDS_H
#define MIRQOS_RECORDS_H

#include <cstdint>
#include <list>

#include <mirqos/api.h>

/// The records that hosts exchange with the store: one for each operation, and the configuration.
///
/// What holds for all of them:
/// - The caller owns the record, usually on its stack. The library keeps no pointer to a record
///   after the call returns, but where an asynchronous operation says so it writes to a buffer that
///   the record named.
/// - A text is NUL-terminated and narrow (UTF-8 for object keys), owned by the caller and only read
///   by the library. "May be null" is said where it holds.
/// - The order and the types of the members are the binary contract with hosts. The constructors
///   and assignments come from the library, so both sides agree on them.
/// - A member described as "not initialised" gets no value from the constructor: the caller sets it
///   before an operation that reads it.
/// - Records are plain values. Copies and moves are member by member, and pointers in a copy point
///   to the same texts and buffers. A record is not safe for use by two threads at once.

/// The special members of a record: exported, so that they are defined in the library alone, except
/// for the copy constructor, which stays trivial and lets records be passed by value.
#define MIRQOS_RECORD(Record)                        \
    MIRQOS_API Record();                             \
    Record(const Record&) = default;                 \
    MIRQOS_API Record& operator=(const Record& rhs); \
    MIRQOS_API Record& operator=(Record&& rhs) noexcept

/// How the library is started: see InitCloudStoreContext.
struct CloudStoreContext {
    MIRQOS_RECORD(CloudStoreContext);

    /// Level of the S3 SDK's log statements: 0 off, 1 fatal, 2 error, 3 warning, 4 information,
    /// 5 debug, 6 trace. Any other value counts as 3.
    std::int32_t m_nLogLevel = 3;
};

/// Configures a store: the argument of MIRQOSInterface::Init, which copies every text.
struct CloudStoreConfigInfo {
    MIRQOS_RECORD(CloudStoreConfigInfo);

    // A null text leaves the store's value as it is, which is empty on a new store.
    const char* m_pszRegion = nullptr;       ///< region that requests are signed for
    const char* m_pszBucket = nullptr;       ///< the store's bucket; most operations name theirs
    const char* m_pszAccessKeyId = nullptr;  ///< public part of the credentials
    const char* m_pszSecretKey = nullptr;    ///< secret part of the credentials; never logged
    /// Service to use instead of the provider's default endpoints, as "host" or "host:port".
    /// Requests then carry the bucket in the path, otherwise in the host name.
    const char* m_pszEndPoint = nullptr;
    std::int32_t m_bUseHttps = 1;  ///< non-zero: HTTPS; zero: HTTP
    /// Bytes of the store's work buffer: no ReadObject may ask for more, which is not checked.
    /// Copies of large objects with provider type 6 need it above 0.
    std::int32_t m_nBufferSize = 0;
    /// Threads for asynchronous operations; 0 leaves them to the SDK, negative counts as 0.
    std::int32_t m_nThreadCount = 0;
    /// 2: an S3-compatible service behind m_pszEndPoint whose listings may need URL encoding;
    /// 5: every "@" of an object key is sent as "+"; 6: Google Cloud Storage, which also takes that
    /// substitution. Any other value: plain S3.
    std::int32_t m_nProviderType = 0;
};

/// MIRQOSInterface::WriteObject.
struct CloudStoreWriteObjectContext {
    MIRQOS_RECORD(CloudStoreWriteObjectContext);

    const char* m_pszKey = nullptr;
    const char* m_pszBucket = nullptr;
    const unsigned char* m_pBuf = nullptr;  ///< the object's bytes, copied before sending
    std::uint64_t m_nBufLen = 0;            ///< bytes in m_pBuf
    std::uint64_t m_nReserved1 = 0;         ///< not read
    std::int32_t m_nReserved2 = 0;          ///< not read
};

/// MIRQOSInterface::ReadObject, ReadObjectAsync and WaitForReadObjectAsync.
struct CloudStoreReadObjectContext {
    MIRQOS_RECORD(CloudStoreReadObjectContext);

    const char* m_pszKey = nullptr;
    /// Destination, with room for m_nReadLen bytes. An asynchronous read uses it until the wait
    /// returns or, without one, until the store is released.
    unsigned char* m_pBuf = nullptr;
    const char* m_pszBucket = nullptr;
    /// Bytes asked for, at most the store's m_nBufferSize for a synchronous read. Not initialised.
    std::uint64_t m_nReadLen;
    /// Out: bytes that ReadObject delivered into m_pBuf; left alone by a failed or an asynchronous
    /// read. Not initialised.
    std::uint64_t m_nReadSize;
    std::uint64_t m_nRangeStart = 0;  ///< first byte of the object to read
    /// Last byte to read, itself included. 0 to 0 is the first byte, never the whole object.
    std::uint64_t m_nRangeEnd = 0;
};

/// MIRQOSInterface::CopyObject.
struct CloudStoreCopyObjectContext {
    MIRQOS_RECORD(CloudStoreCopyObjectContext);

    const char* m_pszSrcBucket = nullptr;
    const char* m_pszDstBucket = nullptr;
    const char* m_pszSrcKey = nullptr;
    const char* m_pszDstKey = nullptr;
    bool m_bIgnoreMissingSource;  ///< a missing source counts as success. Not initialised.
    /// Out: false, or true when the source was missing and m_bIgnoreMissingSource made that a
    /// success. Not initialised.
    bool m_bSourceMissing;
    /// Provider type 6 only: bytes of the source, of which no more are copied when it is large. 0:
    /// the copy looks it up in the configured bucket, whichever the source's is, and writes it back
    /// here.
    std::uint64_t m_nSrcSize = 0;
    /// Provider type 6 only: bytes of one part of a large copy; 0: 8 MiB, written back here.
    std::uint64_t m_nPartSize = 0;
};

/// One listed object: an entry of CloudStoreListObjectConext::m_pObjects.
struct CloudStoreObjInfo {
    MIRQOS_RECORD(CloudStoreObjInfo);

    std::uint64_t m_nSize = 0;  ///< bytes of the object
    char m_szKey[1024];         ///< its key. Not initialised.
};

/// MIRQOSInterface::ListObjects, ListObjectsSegmented and ReleaseObjectData.
struct CloudStoreListObjectConext {
    MIRQOS_RECORD(CloudStoreListObjectConext);

    const char* m_pszBucket = nullptr;
    void* m_pReserved1 = nullptr;       ///< not read
    void* m_pReserved2 = nullptr;       ///< not read
    const char* m_pszPrefix = nullptr;  ///< lists keys that begin with it; null: every key
    /// Out: m_nObjectCount entries, allocated by the store. Give the record to ReleaseObjectData to
    /// free them, and do not list with a record that still holds some: they would leak.
    CloudStoreObjInfo* m_pObjects = nullptr;
    std::uint64_t m_nObjectCount = 0;
    bool m_bTruncated = false;  ///< out: more objects remain
    /// Segmented listing only. In: the token to go on from, empty to begin. Out: the token of the
    /// next segment, empty after the last.
    char m_szContinuationToken[260] = {};
    /// ListObjects only, with provider type 2: whether the endpoint is looked at to decide on
    /// URL-encoded listings.
    bool m_bCheckProviderMarker = true;
};

/// MIRQOSInterface::DeleteObject.
struct CloudStoreDeleteObjectContext {
    MIRQOS_RECORD(CloudStoreDeleteObjectContext);

    const char* m_pszBucket = nullptr;
    const char* m_pszKey = nullptr;
};

/// MIRQOSInterface::DeleteObjectsV2.
struct CloudStoreDeleteObjectsContextV2 {
    MIRQOS_RECORD(CloudStoreDeleteObjectsContextV2);

    const char* m_pszBucket = nullptr;
    /// Keys one after another, each followed by a NUL, and an empty key at the end.
    const char* m_pKeys = nullptr;
};

/// MIRQOSInterface::CreateBucket.
struct CloudStoreCreateBucketContext {
    MIRQOS_RECORD(CloudStoreCreateBucketContext);

    const char* m_pszBucket = nullptr;
    const char* m_pszRegion = nullptr;  ///< location constraint; null: none is sent
};

/// MIRQOSInterface::DeleteBucket.
struct CloudStoreDeleteBucketContext {
    MIRQOS_RECORD(CloudStoreDeleteBucketContext);

    const char* m_pszBucket = nullptr;
};

/// MIRQOSInterface::ListBucket and ReleaseBucketList.
struct CloudStoreListBucketContext {
    MIRQOS_RECORD(CloudStoreListBucketContext);

    /// Out: bucket names one after another, each followed by a NUL, one more NUL at the end;
    /// allocated by the store. Give the record to ReleaseBucketList to free it. Left alone when the
    /// account has no bucket or the call fails.
    const char* m_pBucketNames = nullptr;
};

/// MIRQOSInterface::HeadBucket.
struct CloudStoreHeadBucketConext {
    MIRQOS_RECORD(CloudStoreHeadBucketConext);

    const char* m_pszBucket = nullptr;
    bool m_bExists = false;  ///< out
};

/// MIRQOSInterface::HeadObject.
struct CloudStoreHeadObjectConext {
    MIRQOS_RECORD(CloudStoreHeadObjectConext);

    const char* m_pszBucket = nullptr;
    const char* m_pszKey = nullptr;
    bool m_bExists = false;  ///< out
};

/// MIRQOSInterface::SearchObject.
struct CloudStoreSearchObjectConext {
    MIRQOS_RECORD(CloudStoreSearchObjectConext);

    const char* m_pszBucket = nullptr;
    const char* m_pszKey = nullptr;  ///< the prefix searched for
    bool m_bExists = false;          ///< out: some key begins with it
};

/// One unfinished multipart upload: an entry of CloudStoreListPartContext::m_lstParts. The
/// constructor fills the whole record with zeros.
struct MultiPartInfo {
    MIRQOS_RECORD(MultiPartInfo);

    char m_szKey[260] = {};
    char m_szUploadId[260] = {};
};

/// MIRQOSInterface::ListMultipartUploads. The one record that owns memory by itself: copies copy
/// the list, moves leave the source's list empty, and the destructor frees it.
struct CloudStoreListPartContext {
    MIRQOS_API CloudStoreListPartContext();
    MIRQOS_API CloudStoreListPartContext(const CloudStoreListPartContext& rhs);
    /// Throws std::bad_alloc with a standard library whose empty list has a node of its own.
    // NOLINTNEXTLINE(performance-noexcept-move-constructor): see above
    MIRQOS_API CloudStoreListPartContext(CloudStoreListPartContext&& rhs);
    MIRQOS_API CloudStoreListPartContext& operator=(const CloudStoreListPartContext& rhs);
    MIRQOS_API CloudStoreListPartContext& operator=(CloudStoreListPartContext&& rhs) noexcept;
    MIRQOS_API ~CloudStoreListPartContext();

    const char* m_pszBucket = nullptr;  ///< null: the configured one
    const char* m_pszPrefix = nullptr;  ///< only keys that begin with it; to be set, empty: all
    /// In: the listing starts after this key. Out: the marker of the next page, empty after the
    /// last.
    char m_szKeyMarker[260] = {};
    /// Out: the uploads found are appended. Host and library share the list's nodes, so both have
    /// to be built with the same standard library.
    std::list<MultiPartInfo> m_lstParts;
};

/// MIRQOSInterface::InitMultiPartUpload, what to upload.
struct CloudStoreInitMultiPartUploadContext {
    MIRQOS_RECORD(CloudStoreInitMultiPartUploadContext);

    const char* m_pszBucket = nullptr;
    const char* m_pszKey = nullptr;
    std::uint64_t m_nPartSize = 5242880;  ///< bytes of the parts to come: 5 MiB
};

/// MIRQOSInterface::InitMultiPartUpload, the answer. It has no constructor: nothing is initialised.
struct CloudStoreInitMultiPartUploadOutcome {
    CloudStoreInitMultiPartUploadOutcome() = default;
    CloudStoreInitMultiPartUploadOutcome(const CloudStoreInitMultiPartUploadOutcome&) = default;
    MIRQOS_API CloudStoreInitMultiPartUploadOutcome& operator=(
        const CloudStoreInitMultiPartUploadOutcome& rhs);
    MIRQOS_API CloudStoreInitMultiPartUploadOutcome& operator=(
        CloudStoreInitMultiPartUploadOutcome&& rhs) noexcept;

    char m_szUploadId[260];  ///< out: the id that the upload's other operations take
};

/// MIRQOSInterface::MultiPartUpload and DoMultiPartUploadAsync.
struct CloudStoreMultiPartUploadContext {
    MIRQOS_RECORD(CloudStoreMultiPartUploadContext);

    const char* m_pszUploadId = nullptr;
    const char* m_pszKey = nullptr;
    const char* m_pszBucket = nullptr;
    std::uint64_t m_nPartNumber = 0;        ///< from 1; used as a 32-bit value
    const unsigned char* m_pBuf = nullptr;  ///< the part's bytes, copied before the call returns
    std::int32_t m_nBufLen;                 ///< bytes in m_pBuf. Not initialised.
    bool m_bLastPart;  ///< asynchronous uploads: this is the last part. Not initialised.
};

/// MIRQOSInterface::MultiPartCopy.
struct CloudStoreMultiPartCopyContext {
    MIRQOS_RECORD(CloudStoreMultiPartCopyContext);

    const char* m_pszUploadId = nullptr;
    const char* m_pszKey = nullptr;         ///< destination
    const char* m_pszBucket = nullptr;      ///< destination
    const char* m_pszCopySource = nullptr;  ///< source bucket, a slash and the source key
    std::uint64_t m_nRangeStart;            ///< first source byte. Not initialised.
    std::uint64_t m_nRangeEnd;              ///< last source byte, itself included. Not initialised.
    std::uint64_t m_nPartNumber = 0;        ///< from 1; used as a 32-bit value
    bool m_bReserved;                       ///< not read. Not initialised.
};

/// MIRQOSInterface::FinishMultiPartUpload and FinishMultiPartUploadAsync.
struct CloudStoreFinishMultiPartUploadContext {
    MIRQOS_RECORD(CloudStoreFinishMultiPartUploadContext);

    const char* m_pszUploadId = nullptr;
    const char* m_pszBucket = nullptr;
    const char* m_pszKey = nullptr;
    std::int32_t m_nPartCount = 0;  ///< parts of the upload
};

/// MIRQOSInterface::AbortMultiPartUpload.
struct CloudStoreAbortMultiPartUploadContext {
    MIRQOS_RECORD(CloudStoreAbortMultiPartUploadContext);

    const char* m_pszUploadId = nullptr;
    const char* m_pszBucket = nullptr;
    const char* m_pszKey = nullptr;
};

/// MIRQOSInterface::PutBucketLifecycleConfiguration: one rule that aborts unfinished uploads.
struct LifecycleConfigContext {
    MIRQOS_RECORD(LifecycleConfigContext);

    const char* m_pszRuleId = nullptr;  ///< null: an empty id
    const char* m_pszBucket = nullptr;
    const char* m_pszPrefix = nullptr;  ///< keys that the rule holds for
    std::int32_t m_nDays = 0;           ///< days after an upload's start
};

/// MIRQOSInterface::PutObjectTagging.
struct PutObjectTaggingContext {
    MIRQOS_RECORD(PutObjectTaggingContext);

    const char* m_pszBucket = nullptr;
    const char* m_pszKey = nullptr;
    /// Tags to set, as "key:value" one after another, each followed by a NUL, and an empty one at
    /// the end. An entry is split at its first ":"; without one it is both key and value.
    const char* m_pTags = nullptr;
};

/// MIRQOSInterface::GetObjectTagging.
struct GetObjectTaggingContext {
    MIRQOS_RECORD(GetObjectTaggingContext);

    const char* m_pszBucket = nullptr;
    const char* m_pszKey = nullptr;
    char m_szTags[2600];  ///< out: the tags, packed as PutObjectTaggingContext has them. Not
                          ///< initialised.
};

#undef MIRQOS_RECORD

#endif
