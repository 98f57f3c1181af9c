#include <aws/s3/model/DeleteObjectRequest.h>
#include <aws/s3/model/DeleteObjectsRequest.h>

#include <cassert>
#include <string>
#include <string_view>

#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/ObjectKey.h"
#include "store/PackedTextList.h"

namespace {

constexpr char kOperation[] = "AwsS3Store::DeleteObjectsV2";
constexpr auto kCannotBeNamed = static_cast<int32_t>(Aws::S3::S3Errors::MISSING_PARAMETER);

// A line of the log holds about a thousand characters: the keys are spread over several.
constexpr size_t kKeysPerLine = 20;

void LogDeleted(const Aws::Vector<Aws::S3::Model::DeletedObject>& deleted, const char* pszBucket) {
    std::string strLine = std::string(kOperation) +
                          " Success. Count:" + std::to_string(deleted.size()) +
                          " bucket: " + pszBucket;
    for (size_t i = 0; i < deleted.size(); ++i) {
        strLine.append(" ").append(deleted[i].GetKey().c_str());
        if ((i > 0 && i % kKeysPerLine == 0) || i + 1 == deleted.size()) {
            ModuleLog(&g_ModuleLog, 1, "[%s]", strLine.c_str());
            strLine.clear();
        }
    }
}

void LogFailure(int32_t nCount, const char* pszBucket, int32_t nStatus, const char* pszMessage) {
    ModuleLog(&g_ModuleLog, 1, "Failed to delete objects. count:%d, bucket:%s, EC:%d.", nCount,
              pszBucket, nStatus);
    ModuleLog(&g_ModuleLog, 1, "%s", pszMessage);
}

}  // namespace

int32_t AwsS3Store::DeleteObject(CloudStoreDeleteObjectContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    Aws::S3::Model::DeleteObjectRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, KeyForService(pContext->m_pszKey));

    const auto outcome = m_pClient->DeleteObject(request);
    if (outcome.IsSuccess()) {
        ModuleLog(&g_ModuleLog, 2, "Succeed to delete object %s in bucket %s.", pContext->m_pszKey,
                  pContext->m_pszBucket);
        return 0;
    }
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    ModuleLog(&g_ModuleLog, 1, "Failed to delete object %s in bucket %s. EC:%d.",
              pContext->m_pszKey, pContext->m_pszBucket, nStatus);
    ModuleLog(&g_ModuleLog, 1, "%s", outcome.GetError().GetMessage().c_str());
    return nStatus;
}

int32_t AwsS3Store::DeleteObjectsV2(CloudStoreDeleteObjectsContextV2* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    // Google Cloud Storage's S3 interface has no multi-object delete.
    return m_nProviderType == Mirqos::ProviderType::kGoogleCloudStorage
               ? DeleteOneByOne(pContext)
               : DeleteInOneRequest(pContext);
}

int32_t AwsS3Store::DeleteInOneRequest(CloudStoreDeleteObjectsContextV2* pContext) {
    Aws::S3::Model::Delete container;
    int32_t nCount = 0;
    bool bCanBeNamed = true;
    Mirqos::PackedTextReader keys(pContext->m_pKeys);
    for (std::string_view key; keys.Next(key); ++nCount) {
        // Keys go as they are here, unlike in the single delete: hosts pass what a listing of the
        // service's own names gave them.
        Aws::S3::Model::ObjectIdentifier identifier;
        identifier.SetKey(Aws::String(key));
        bCanBeNamed = CanNameInDocument(identifier.GetKey()) && bCanBeNamed;
        container.AddObjects(identifier);
    }
    if (!bCanBeNamed) {
        // As a whole, as the service refuses a document with a key that it cannot read.
        LogFailure(nCount, pContext->m_pszBucket, kCannotBeNamed, "A key cannot be sent.");
        return kCannotBeNamed;
    }
    Aws::S3::Model::DeleteObjectsRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    request.WithDelete(container);

    const auto outcome = m_pClient->DeleteObjects(request);
    if (!outcome.IsSuccess()) {
        const int32_t nStatus = Mirqos::StatusOf(outcome);
        LogFailure(nCount, pContext->m_pszBucket, nStatus, outcome.GetError().GetMessage().c_str());
        return nStatus;
    }
    LogDeleted(outcome.GetResult().GetDeleted(), pContext->m_pszBucket);
    return 0;
}

int32_t AwsS3Store::DeleteOneByOne(CloudStoreDeleteObjectsContextV2* pContext) {
    Mirqos::PackedTextReader keys(pContext->m_pKeys);
    for (std::string_view key; keys.Next(key);) {
        ModuleLog(&g_ModuleLog, 1, "%s Checking object avilable %s.", kOperation, key.data());
        CloudStoreHeadObjectConext head;
        head.m_pszBucket = pContext->m_pszBucket;
        head.m_pszKey = key.data();
        const int32_t nHeadStatus = HeadObject(&head);
        if (nHeadStatus != 0 || !head.m_bExists) {
            ModuleLog(&g_ModuleLog, 1, "%s object is not available %s. result = %d", kOperation,
                      key.data(), nHeadStatus);
            continue;
        }
        ModuleLog(&g_ModuleLog, 1, "%s Calling DeleteObject for Google Cloud storage %s.",
                  kOperation, key.data());
        CloudStoreDeleteObjectContext single;
        single.m_pszBucket = pContext->m_pszBucket;
        single.m_pszKey = key.data();
        const int32_t nStatus = DeleteObject(&single);
        if (nStatus != 0) {
            return nStatus;
        }
    }
    return 0;
}
