#include <aws/s3/model/DeleteObjectRequest.h>

#include <cassert>

#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"

int32_t AwsS3Store::DeleteObject(CloudStoreDeleteObjectContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    Aws::S3::Model::DeleteObjectRequest request;
    request.SetBucket(pContext->m_pszBucket);
    request.SetKey(KeyForService(pContext->m_pszKey));

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
