#include <mirqos/records.h>

#include <algorithm>
#include <iterator>
#include <utility>

// Defined here and not in the class, because a member that is defaulted in its class is never
// exported.
#define MIRQOS_RECORD_ASSIGNMENTS(Record)               \
    Record& Record::operator=(const Record&) = default; \
    Record& Record::operator=(Record&&) noexcept = default

#define MIRQOS_RECORD_MEMBERS(Record) \
    Record::Record() = default;       \
    MIRQOS_RECORD_ASSIGNMENTS(Record)

MIRQOS_RECORD_MEMBERS(CloudStoreContext);
MIRQOS_RECORD_MEMBERS(CloudStoreConfigInfo);
MIRQOS_RECORD_MEMBERS(CloudStoreWriteObjectContext);
MIRQOS_RECORD_MEMBERS(CloudStoreReadObjectContext);
MIRQOS_RECORD_MEMBERS(CloudStoreCopyObjectContext);
MIRQOS_RECORD_MEMBERS(CloudStoreObjInfo);
MIRQOS_RECORD_MEMBERS(CloudStoreListObjectConext);
MIRQOS_RECORD_MEMBERS(CloudStoreDeleteObjectContext);
MIRQOS_RECORD_MEMBERS(CloudStoreDeleteObjectsContextV2);
MIRQOS_RECORD_MEMBERS(CloudStoreCreateBucketContext);
MIRQOS_RECORD_MEMBERS(CloudStoreDeleteBucketContext);
MIRQOS_RECORD_MEMBERS(CloudStoreListBucketContext);
MIRQOS_RECORD_MEMBERS(CloudStoreHeadBucketConext);
MIRQOS_RECORD_MEMBERS(CloudStoreHeadObjectConext);
MIRQOS_RECORD_MEMBERS(CloudStoreSearchObjectConext);
MIRQOS_RECORD_MEMBERS(MultiPartInfo);
MIRQOS_RECORD_MEMBERS(CloudStoreInitMultiPartUploadContext);
MIRQOS_RECORD_ASSIGNMENTS(CloudStoreInitMultiPartUploadOutcome);
MIRQOS_RECORD_MEMBERS(CloudStoreMultiPartUploadContext);
MIRQOS_RECORD_MEMBERS(CloudStoreMultiPartCopyContext);
MIRQOS_RECORD_MEMBERS(CloudStoreFinishMultiPartUploadContext);
MIRQOS_RECORD_MEMBERS(CloudStoreAbortMultiPartUploadContext);
MIRQOS_RECORD_MEMBERS(LifecycleConfigContext);
MIRQOS_RECORD_MEMBERS(PutObjectTaggingContext);
MIRQOS_RECORD_MEMBERS(GetObjectTaggingContext);

CloudStoreListPartContext::CloudStoreListPartContext() = default;
CloudStoreListPartContext::CloudStoreListPartContext(const CloudStoreListPartContext&) = default;
CloudStoreListPartContext& CloudStoreListPartContext::operator=(const CloudStoreListPartContext&) =
    default;
CloudStoreListPartContext::~CloudStoreListPartContext() = default;

// The standard leaves a moved-from list unspecified; hosts are promised an empty one.
// NOLINTNEXTLINE(performance-noexcept-move-constructor): an empty list may allocate
CloudStoreListPartContext::CloudStoreListPartContext(CloudStoreListPartContext&& rhs)
    : CloudStoreListPartContext() {
    *this = std::move(rhs);
}

CloudStoreListPartContext& CloudStoreListPartContext::operator=(
    CloudStoreListPartContext&& rhs) noexcept {
    if (this != &rhs) {
        m_pszBucket = rhs.m_pszBucket;
        m_pszPrefix = rhs.m_pszPrefix;
        std::copy(std::begin(rhs.m_szKeyMarker), std::end(rhs.m_szKeyMarker), m_szKeyMarker);
        m_lstParts.swap(rhs.m_lstParts);
        rhs.m_lstParts.clear();
    }
    return *this;
}
