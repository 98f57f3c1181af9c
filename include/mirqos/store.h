#ifndef MIRQOS_STORE_H
#define MIRQOS_STORE_H

#include <cstdint>

#include <mirqos/api.h>
#include <mirqos/records.h>

/// An object store. CreateCloudStoreInterface makes one, ReleaseCloudStoreInterface destroys it.
///
/// Status: 0 is success. Otherwise it is the S3 SDK's error number for the failure, in the
/// numbering of the SDK that the library was built with, or a code that the operation names. The
/// SDK's error with the number 0 (an incomplete signature) is reported as its unknown error. A
/// failure of a request also writes lines to the module log with the service's message. No
/// operation throws, except that an allocation failure may leave one as the allocator's exception.
///
/// Keys, upload ids and other texts of a service that do not fit their places end the process: cut
/// short they would name something else. Only listings leave out what does not fit where they say
/// so.
///
/// Duration: an operation returns within the attempts that the SDK's retry policy allows, each
/// bounded by three minutes to connect and five minutes without progress.
///
/// Threads: operations may run on several threads at once, except where noted. Init, the four
/// accessors and the destruction must not overlap any other call on the same store.
///
/// Preconditions: every record pointer, and every text and buffer that an operation reads, is set;
/// Init has been called. Anything else is the caller's error: asserted in debug builds, undefined
/// in others.
///
/// The order of the virtual members is the binary contract with hosts: it never changes, and new
/// members go to the end.
class MIRQOS_API MIRQOSInterface {
public:
    MIRQOSInterface();
    MIRQOSInterface(const MIRQOSInterface& rhs);
    MIRQOSInterface& operator=(const MIRQOSInterface& rhs);
    virtual ~MIRQOSInterface();

    /// Copies the configuration and makes the store usable; needs a started library. A second call
    /// replaces the work buffer and every text that is not null, and the client of the first call
    /// lives on until the process ends. Returns 0; an allocation failure, or a thread that the
    /// system refuses, leaves as std::bad_alloc.
    virtual std::int32_t Init(CloudStoreConfigInfo* config) = 0;

    // The store's own copies: valid until the next Init or the store's destruction, never null.
    virtual const char* GetRegion() = 0;
    virtual const char* GetBucketName() = 0;
    virtual const char* GetAccessKeyId() = 0;
    virtual const char* GetSecretKey() = 0;

    /// Stores the buffer as one object with one request. The buffer is copied first.
    virtual std::int32_t WriteObject(CloudStoreWriteObjectContext* context) = 0;
    /// Reads one byte range of an object. It uses the store's one work buffer, so calls on the same
    /// store wait for each other: read in parallel with one store for each thread, or with
    /// ReadObjectAsync. Bytes from another place of the object than asked for are a failure, and so
    /// are fewer than the answer itself says it has.
    virtual std::int32_t ReadObject(CloudStoreReadObjectContext* context) = 0;
    /// Starts one ranged read and returns; with a range that ends before it begins or a length of 0
    /// there is nothing to read, nor to wait for. The texts and the buffer that the record names
    /// stay in use until WaitForReadObjectAsync returns, the record itself does not, and its
    /// m_nReadSize is not written. The reads between two waits are a batch; a store has one at a
    /// time, which one thread starts and waits for.
    virtual std::int32_t ReadObjectAsync(CloudStoreReadObjectContext* context) = 0;
    /// Waits for the reads started since the last wait, at least one, and returns the failure of
    /// one that failed, or -1 when the wait ended before every read was answered. The record is
    /// used for log lines only.
    virtual std::int32_t WaitForReadObjectAsync(CloudStoreReadObjectContext* context) = 0;
    /// Copies an object with one request. With provider type 6 one larger than m_nPartSize goes
    /// through a temporary file of this machine instead. That can also fail with 14 (memory), 29 or
    /// 30 (the file or the object could not be written or read whole), 82 (no temporary file), 87
    /// (the store's m_nBufferSize, or the low 32 bits of the part size as a signed number, is not
    /// above 0) or an error of the system. Where the size had to be looked up and that failed, its
    /// status is returned although the copy may have been made.
    virtual std::int32_t CopyObject(CloudStoreCopyObjectContext* context) = 0;

    /// Lists at most 1,000 objects under a prefix; m_bTruncated tells whether there are more, which
    /// ListObjectsSegmented lists. A key of 1,024 bytes ends the process. 14: no memory for the
    /// result. Free it with ReleaseObjectData. A request refused with the error numbered 0 ends the
    /// listing with what came before and status 0.
    virtual std::int32_t ListObjects(CloudStoreListObjectConext* context) = 0;
    /// Lists one segment of the configured bucket, whatever bucket the record names (null fails),
    /// and hands back the token of the next. Otherwise as ListObjects.
    virtual std::int32_t ListObjectsSegmented(CloudStoreListObjectConext* context) = 0;
    /// Frees a listing's result and sets the record's pointer to null and its count to 0.
    virtual std::int32_t ReleaseObjectData(CloudStoreListObjectConext* context) = 0;

    virtual std::int32_t DeleteObject(CloudStoreDeleteObjectContext* context) = 0;
    /// Deletes a list of objects. A key with a control character other than tab and line ends,
    /// which the request's document cannot hold, may have the service refuse the whole list:
    /// DeleteObject takes such keys. 0 says that the service answered, not that each object is
    /// gone: what it says of a single key is not looked at. Services take 1,000 keys at most. With
    /// provider type 6 each object is asked for and deleted by itself: one for which the question
    /// fails, for whatever reason, is passed over without a failure, and the first deletion that
    /// fails ends the call with its status.
    virtual std::int32_t DeleteObjectsV2(CloudStoreDeleteObjectsContextV2* context) = 0;

    /// -1, without a line: no bucket is named. 110: the account has too many.
    virtual std::int32_t CreateBucket(CloudStoreCreateBucketContext* context) = 0;
    /// -1, without a line: no bucket is named.
    virtual std::int32_t DeleteBucket(CloudStoreDeleteBucketContext* context) = 0;
    /// Lists the account's buckets. Free the result with ReleaseBucketList.
    virtual std::int32_t ListBucket(CloudStoreListBucketContext* context) = 0;
    /// Frees ListBucket's result and sets the record's pointer to null; a null pointer is fine.
    virtual void ReleaseBucketList(CloudStoreListBucketContext* context) = 0;
    /// Asks whether a bucket exists. The record has the answer: any failure counts as "no", and the
    /// status is 0 all the same.
    virtual std::int32_t HeadBucket(CloudStoreHeadBucketConext* context) = 0;

    /// Asks whether an object exists.
    virtual std::int32_t HeadObject(CloudStoreHeadObjectConext* context) = 0;
    /// Asks whether any object's key begins with a prefix.
    virtual std::int32_t SearchObject(CloudStoreSearchObjectConext* context) = 0;
    /// Appends one page of the bucket's unfinished multipart uploads to the record's list. Those
    /// whose key or id does not fit are left out. 34: the marker of the next page does not fit.
    virtual std::int32_t ListMultipartUploads(CloudStoreListPartContext* context) = 0;
    /// Has the service abort unfinished multipart uploads after a number of days.
    virtual std::int32_t PutBucketLifecycleConfiguration(LifecycleConfigContext* context) = 0;
    /// Replaces an object's tags.
    virtual std::int32_t PutObjectTagging(PutObjectTaggingContext* context) = 0;
    /// Reads an object's tags. 34: they do not fit m_szTags.
    virtual std::int32_t GetObjectTagging(GetObjectTaggingContext* context) = 0;
    /// Writes the bucket's region, NUL-terminated, to `location`, which has room for `size` bytes.
    /// A text that does not fit ends the process: give it 260 bytes.
    virtual std::int32_t GetBucketLocation(const char* bucket, char* location,
                                           std::uint64_t size) = 0;

    /// Begins a multipart upload and hands back its id. The operations below that take an id return
    /// -1 where it is not one of an upload that this store began and has not finished; only
    /// AbortMultiPartUpload takes any.
    virtual std::int32_t InitMultiPartUpload(CloudStoreInitMultiPartUploadContext* context,
                                             CloudStoreInitMultiPartUploadOutcome* outcome) = 0;
    /// Sends one part and returns when the service has answered.
    virtual std::int32_t MultiPartUpload(CloudStoreMultiPartUploadContext* context) = 0;
    /// Makes one part out of a byte range of another object, within the service.
    virtual std::int32_t MultiPartCopy(CloudStoreMultiPartCopyContext* context) = 0;
    /// Completes an upload whose parts were sent with MultiPartUpload or MultiPartCopy.
    virtual std::int32_t FinishMultiPartUpload(CloudStoreFinishMultiPartUploadContext* context) = 0;
    /// Copies the part and sends it from another thread. The copies are kept until the finish.
    /// Several threads may send parts of one upload. Returns 0 also when the part could not be
    /// handed over for lack of memory; the finish then fails with 14.
    virtual std::int32_t DoMultiPartUploadAsync(CloudStoreMultiPartUploadContext* context) = 0;
    /// Waits for the parts sent with DoMultiPartUploadAsync, all of whose calls have returned, and
    /// completes the upload, or gives the error of the part that failed last. One finish of either
    /// kind for an upload.
    virtual std::int32_t FinishMultiPartUploadAsync(
        CloudStoreFinishMultiPartUploadContext* context) = 0;
    /// Gives an upload up; the service drops its parts. What the store keeps of the upload, bodies
    /// of asynchronous parts included, stays until a finish: call one of them afterwards, whose
    /// failure says that the upload is gone.
    virtual std::int32_t AbortMultiPartUpload(CloudStoreAbortMultiPartUploadContext* context) = 0;

    /// Requests that this store has counted so far. Not every operation counts: CreateBucket and
    /// DeleteObject, for instance, do not.
    virtual std::uint64_t GetRequestCount() = 0;
};

#endif
