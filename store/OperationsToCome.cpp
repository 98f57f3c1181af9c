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

int32_t AwsS3Store::CopyObject(CloudStoreCopyObjectContext*) {
    return NotSupported("CopyObject");
}
