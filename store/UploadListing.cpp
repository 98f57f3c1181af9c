#include <aws/s3/model/ListMultipartUploadsRequest.h>

#include <cassert>
#include <cstring>

#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"

namespace {

constexpr char kOperation[] = "AwsS3Store::ListMultipartUploads";
constexpr int32_t kDoesNotFit = 34;

// Copies a text with its NUL into a zeroed room of a record, or reports that it does not fit.
template <size_t kSize>
bool CopyIfItFits(char (&room)[kSize], const Aws::String& text) {
    if (text.size() >= kSize) {
        return false;
    }
    std::memcpy(room, text.data(), text.size());
    return true;
}

}  // namespace

int32_t AwsS3Store::ListMultipartUploads(CloudStoreListPartContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ModuleLog(&g_ModuleLog, 1, "%s enter. bucket:[%s] prefix:[%s].", kOperation,
              pContext->m_pszBucket, pContext->m_pszPrefix);
    Aws::S3::Model::ListMultipartUploadsRequest request;
    Mirqos::SetBucketName(
        request, pContext->m_pszBucket != nullptr ? pContext->m_pszBucket : GetBucketName());
    request.SetPrefix(pContext->m_pszPrefix);
    if (pContext->m_szKeyMarker[0] != '\0') {
        request.SetKeyMarker(pContext->m_szKeyMarker);
    }
    ++m_nRequestCount;

    int32_t nStatus = 0;
    const auto outcome = m_pClient->ListMultipartUploads(request);
    if (!outcome.IsSuccess()) {
        nStatus = Mirqos::StatusOf(outcome);
        ModuleLog(&g_ModuleLog, 1, "list part in bucket:[%s] failed.", pContext->m_pszBucket);
        ModuleLog(&g_ModuleLog, 1, "The list error message:[%s], EC:[%d]",
                  outcome.GetError().GetMessage().c_str(), nStatus);
    } else {
        const auto& page = outcome.GetResult();
        for (const auto& upload : page.GetUploads()) {
            MultiPartInfo info;
            // A record that holds half a key would name another upload: it is left out instead.
            if (!CopyIfItFits(info.m_szKey, upload.GetKey()) ||
                !CopyIfItFits(info.m_szUploadId, upload.GetUploadId())) {
                ModuleLog(&g_ModuleLog, 1,
                          "%s left out an upload too long to hand over: [%s] [%s].", kOperation,
                          upload.GetUploadId().c_str(), upload.GetKey().c_str());
                continue;
            }
            pContext->m_lstParts.push_back(info);
        }
        std::memset(pContext->m_szKeyMarker, 0, sizeof pContext->m_szKeyMarker);
        if (page.GetIsTruncated() &&
            !CopyIfItFits(pContext->m_szKeyMarker, page.GetNextKeyMarker())) {
            nStatus = kDoesNotFit;
            ModuleLog(&g_ModuleLog, 1, "%s next key marker too long to hand over: [%s]. EC:[%d]",
                      kOperation, page.GetNextKeyMarker().c_str(), nStatus);
        }
    }
    ModuleLog(&g_ModuleLog, 1, "%s leave. bucket:[%s] prefix:[%s] count:[%d].", kOperation,
              pContext->m_pszBucket, pContext->m_pszPrefix,
              static_cast<int>(pContext->m_lstParts.size()));
    return nStatus;
}
