#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"

// Operations whose implementation is still to come: each says so in its status and in the log, and
// touches nothing of its record.

namespace {

constexpr int32_t kNotSupported = 50;

int32_t NotSupported(const char* pszOperation) {
    ModuleLog(&g_ModuleLog, 1, "AwsS3Store::%s is not supported. EC:[%d].", pszOperation,
              kNotSupported);
    return kNotSupported;
}

}  // namespace

int32_t AwsS3Store::ReadObjectAsync(CloudStoreReadObjectContext*) {
    return NotSupported("ReadObjectAsync");
}

int32_t AwsS3Store::WaitForReadObjectAsync(CloudStoreReadObjectContext*) {
    return NotSupported("WaitForReadObjectAsync");
}

int32_t AwsS3Store::CopyObject(CloudStoreCopyObjectContext*) {
    return NotSupported("CopyObject");
}

int32_t AwsS3Store::ListObjects(CloudStoreListObjectConext*) {
    return NotSupported("ListObjects");
}

int32_t AwsS3Store::ListObjectsSegmented(CloudStoreListObjectConext*) {
    return NotSupported("ListObjectsSegmented");
}

int32_t AwsS3Store::ReleaseObjectData(CloudStoreListObjectConext*) {
    return NotSupported("ReleaseObjectData");
}

int32_t AwsS3Store::DeleteObjectsV2(CloudStoreDeleteObjectsContextV2*) {
    return NotSupported("DeleteObjectsV2");
}

int32_t AwsS3Store::DeleteBucket(CloudStoreDeleteBucketContext*) {
    return NotSupported("DeleteBucket");
}

int32_t AwsS3Store::ListBucket(CloudStoreListBucketContext*) {
    return NotSupported("ListBucket");
}

int32_t AwsS3Store::HeadObject(CloudStoreHeadObjectConext*) {
    return NotSupported("HeadObject");
}

int32_t AwsS3Store::SearchObject(CloudStoreSearchObjectConext*) {
    return NotSupported("SearchObject");
}

int32_t AwsS3Store::ListMultipartUploads(CloudStoreListPartContext*) {
    return NotSupported("ListMultipartUploads");
}

int32_t AwsS3Store::PutBucketLifecycleConfiguration(LifecycleConfigContext*) {
    return NotSupported("PutBucketLifecycleConfiguration");
}

int32_t AwsS3Store::PutObjectTagging(PutObjectTaggingContext*) {
    return NotSupported("PutObjectTagging");
}

int32_t AwsS3Store::GetObjectTagging(GetObjectTaggingContext*) {
    return NotSupported("GetObjectTagging");
}

int32_t AwsS3Store::GetBucketLocation(const char*, char*, uint64_t) {
    return NotSupported("GetBucketLocation");
}

int32_t AwsS3Store::InitMultiPartUpload(CloudStoreInitMultiPartUploadContext*,
                                        CloudStoreInitMultiPartUploadOutcome*) {
    return NotSupported("InitMultiPartUpload");
}

int32_t AwsS3Store::MultiPartUpload(CloudStoreMultiPartUploadContext*) {
    return NotSupported("MultiPartUpload");
}

int32_t AwsS3Store::MultiPartCopy(CloudStoreMultiPartCopyContext*) {
    return NotSupported("MultiPartCopy");
}

int32_t AwsS3Store::FinishMultiPartUpload(CloudStoreFinishMultiPartUploadContext*) {
    return NotSupported("FinishMultiPartUpload");
}

int32_t AwsS3Store::DoMultiPartUploadAsync(CloudStoreMultiPartUploadContext*) {
    return NotSupported("DoMultiPartUploadAsync");
}

int32_t AwsS3Store::FinishMultiPartUploadAsync(CloudStoreFinishMultiPartUploadContext*) {
    return NotSupported("FinishMultiPartUploadAsync");
}

int32_t AwsS3Store::AbortMultiPartUpload(CloudStoreAbortMultiPartUploadContext*) {
    return NotSupported("AbortMultiPartUpload");
}
