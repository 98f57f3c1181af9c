#include "tools/mirqos/Session.h"

#include <cassert>
#include <limits>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

CloudStoreContext StartWith(const Settings& settings) {
    CloudStoreContext context;
    context.m_nLogLevel = settings.logLevel;
    return context;
}

}  // namespace

Session::Session(const Settings& settings)
    : m_settings(settings), m_engine(true, StartWith(settings)) {
}

StorePointer Session::OpenStore(const std::string& bucket, std::uint64_t readRoom,
                                unsigned asyncThreads) const {
    assert(readRoom <= std::numeric_limits<std::int32_t>::max());
    CloudStoreConfigInfo config;
    config.m_pszBucket = bucket.c_str();
    config.m_pszAccessKeyId = m_settings.accessKey.c_str();
    config.m_pszSecretKey = m_settings.secretKey.c_str();
    config.m_pszRegion = m_settings.region.empty() ? nullptr : m_settings.region.c_str();
    config.m_pszEndPoint = m_settings.endpoint.empty() ? nullptr : m_settings.endpoint.c_str();
    config.m_bUseHttps = m_settings.https ? 1 : 0;
    config.m_nProviderType = m_settings.provider;
    config.m_nBufferSize = static_cast<std::int32_t>(readRoom);
    config.m_nThreadCount = static_cast<std::int32_t>(asyncThreads);
    StorePointer store(CreateCloudStoreInterface(nullptr));
    const std::int32_t status = store->Init(&config);
    if (status != 0) {
        throw Failure(ExitCode::OperationFailed,
                      "Init failed with status " + std::to_string(status));
    }
    return store;
}

bool BucketAnswers(MIRQOSInterface& store, const std::string& bucket) {
    CloudStoreHeadBucketConext head;
    head.m_pszBucket = bucket.c_str();
    return store.HeadBucket(&head) == 0 && head.m_bExists;
}

bool ObjectAnswers(MIRQOSInterface& store, const ObjectUrl& url) {
    CloudStoreHeadObjectConext head;
    head.m_pszBucket = url.bucket.c_str();
    head.m_pszKey = url.key.c_str();
    const std::int32_t status = store.HeadObject(&head);
    if (status != kStatusNotFound) {
        CheckStatus(status, "HeadObject", url, store);
    }
    return status == 0 && head.m_bExists;
}

void FailOperation(std::int32_t status, const char* operation, const ObjectUrl& url,
                   const std::string& why) {
    const std::string key = url.key.empty() ? "" : ", key '" + Printable(url.key) + "'";
    throw Failure(ExitCode::OperationFailed,
                  std::string(operation) + " failed for bucket '" + url.bucket + "'" + key +
                      ": status " + std::to_string(status) + ", " + why,
                  status);
}

void CheckStatus(std::int32_t status, const char* operation, const ObjectUrl& url,
                 MIRQOSInterface& store) {
    if (status == 0) {
        return;
    }
    std::string why = ExplainStatus(status);
    if (IsS3Status(status) || status == kStatusNotFound) {
        if (!BucketAnswers(store, url.bucket)) {
            why = "most likely there is no such bucket, or these credentials may not see it";
        } else if (!url.key.empty()) {
            why = "the bucket is there; check the key, most likely there is no such object";
        }
    }
    FailOperation(status, operation, url, why);
}

}  // namespace Mirqos::Tool
