#include <aws/s3/model/HeadObjectRequest.h>
#include <aws/s3/model/ListObjectsV2Request.h>

#include <cassert>

#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/ObjectKey.h"

int32_t AwsS3Store::HeadObject(CloudStoreHeadObjectConext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    pContext->m_bExists = false;
    ++m_nRequestCount;
    Aws::S3::Model::HeadObjectRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, KeyForService(pContext->m_pszKey));

    const auto outcome = m_pClient->HeadObject(request);
    if (outcome.IsSuccess()) {
        pContext->m_bExists = true;
        return 0;
    }
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    ModuleLog(&g_ModuleLog, 1, "HeadObject [%s %s] failed.", pContext->m_pszBucket,
              pContext->m_pszKey);
    ModuleLog(&g_ModuleLog, 1, "The error message:[%s], EC:[%d]",
              outcome.GetError().GetMessage().c_str(), nStatus);
    return nStatus;
}

int32_t AwsS3Store::SearchObject(CloudStoreSearchObjectConext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    pContext->m_bExists = false;
    ++m_nRequestCount;
    Aws::S3::Model::ListObjectsV2Request request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    request.SetPrefix(KeyForService(pContext->m_pszKey));

    const auto outcome = m_pClient->ListObjectsV2(request);
    if (outcome.IsSuccess()) {
        pContext->m_bExists = !outcome.GetResult().GetContents().empty();
        return 0;
    }
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    ModuleLog(&g_ModuleLog, 1, "search object in bucket:[%s] failed.", pContext->m_pszBucket);
    ModuleLog(&g_ModuleLog, 1, "The search error message:[%s], EC:[%d]",
              outcome.GetError().GetMessage().c_str(), nStatus);
    return nStatus;
}
