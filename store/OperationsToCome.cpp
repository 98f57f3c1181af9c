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
