#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/stream/PreallocatedStreamBuf.h>
#include <aws/s3/model/AbortMultipartUploadRequest.h>
#include <aws/s3/model/CompleteMultipartUploadRequest.h>
#include <aws/s3/model/CreateMultipartUploadRequest.h>
#include <aws/s3/model/UploadPartCopyRequest.h>
#include <aws/s3/model/UploadPartRequest.h>

#include <algorithm>
#include <cassert>
#include <utility>

#include "log/ModuleLog.h"
#include "platform/bounded_copy.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/MultiPartUploadState.h"
#include "store/ObjectBody.h"
#include "store/ObjectKey.h"
#include "store/Status.h"
#include "store/UploadId.h"

namespace {

// A part that is sent again keeps the tag that was recorded first.
void KeepFirstETag(MultiPartUploadState& state, uint32_t nPartNumber, const Aws::String& eTag) {
    const std::lock_guard<std::mutex> lock(state.m_mtxState);
    state.m_mapPartETags.emplace(nPartNumber, eTag);
}

// Parts 1 to nPartCount in this order, whatever order they were sent in. One that was never
// recorded goes with an empty tag: the service then refuses to complete.
Aws::S3::Model::CompletedMultipartUpload PartList(MultiPartUploadState& state, int32_t nPartCount) {
    Aws::Vector<Aws::S3::Model::CompletedPart> parts(
        static_cast<size_t>(std::max<int32_t>(nPartCount, 0)));
    const std::lock_guard<std::mutex> lock(state.m_mtxState);
    uint32_t nPartNumber = 0;
    for (auto& part : parts) {
        ++nPartNumber;
        part.SetETag(state.m_mapPartETags[nPartNumber]);
        part.SetPartNumber(static_cast<int>(nPartNumber));
    }
    Aws::S3::Model::CompletedMultipartUpload upload;
    upload.SetParts(std::move(parts));
    return upload;
}

}  // namespace

int32_t AwsS3Store::UnknownUpload(const char* pszOperation) {
    ModuleLog(&g_ModuleLog, 1, "%s unknown error.", pszOperation);
    return Mirqos::kUnknownError;
}

std::shared_ptr<MultiPartUploadState> AwsS3Store::FindUpload(const char* pszUploadId) {
    const std::lock_guard<std::mutex> lock(m_mtxStore);
    const auto found = m_mapUploads.find(pszUploadId);
    return found != m_mapUploads.end() ? found->second : nullptr;
}

bool AwsS3Store::IsOpen(const MultiPartUploadState& state) {
    const std::lock_guard<std::mutex> lock(m_mtxStore);
    return state.m_pSelf != nullptr;
}

void AwsS3Store::ForgetUpload(const char* pszUploadId) {
    const std::lock_guard<std::mutex> lock(m_mtxStore);
    const auto found = m_mapUploads.find(pszUploadId);
    if (found != m_mapUploads.end()) {
        found->second->m_pSelf.reset();
        m_mapUploads.erase(found);
    }
}

int32_t AwsS3Store::InitMultiPartUpload(CloudStoreInitMultiPartUploadContext* pContext,
                                        CloudStoreInitMultiPartUploadOutcome* pOutcome) {
    assert(pContext != nullptr && pOutcome != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    ++m_nInitMultiPartCount;
    Aws::S3::Model::CreateMultipartUploadRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, KeyForService(pContext->m_pszKey));

    const auto outcome = m_pClient->CreateMultipartUpload(request);
    const char* pszUploadId = outcome.GetResult().GetUploadId().c_str();
    if (!outcome.IsSuccess() || *pszUploadId == '\0') {
        // Without an id the parts and an abort of the upload would be requests about the object.
        const int32_t nStatus = outcome.IsSuccess()
                                    ? static_cast<int32_t>(Aws::S3::S3Errors::UNKNOWN)
                                    : Mirqos::StatusOf(outcome);
        ModuleLog(&g_ModuleLog, 1, "Init multi-part upload for:[%s:%s:%s] failed.EC:[%d].",
                  m_strRegion.c_str(), pContext->m_pszBucket, pContext->m_pszKey, nStatus);
        ModuleLog(&g_ModuleLog, 1, "Init Error Message:[%s].",
                  outcome.IsSuccess() ? "The answer holds no upload id."
                                      : outcome.GetError().GetMessage().c_str());
        return nStatus;
    }
    // An id cut short would name no upload and lose every part: the process ends instead.
    Mirqos::CopyTextOrEndProcess(pOutcome->m_szUploadId, sizeof pOutcome->m_szUploadId,
                                 pszUploadId);
    auto pState = std::make_shared<MultiPartUploadState>();
    const std::lock_guard<std::mutex> lock(m_mtxStore);
    m_mapUploads[pszUploadId] = pState;
    pState->m_pSelf = pState;  // last: without memory for its place nothing else would end it
    return 0;
}

Aws::S3::Model::UploadPartRequest AwsS3Store::PartRequest(
    const CloudStoreMultiPartUploadContext& context) const {
    Aws::S3::Model::UploadPartRequest request;
    Mirqos::SetBucketName(request, context.m_pszBucket);
    SetObjectKey(request, KeyForService(context.m_pszKey));
    Mirqos::SetUploadId(request, context.m_pszUploadId);
    request.SetPartNumber(static_cast<int>(context.m_nPartNumber));
    return request;
}

int32_t AwsS3Store::MultiPartUpload(CloudStoreMultiPartUploadContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr && pContext->m_nBufLen >= 0);
    ++m_nRequestCount;
    // Before anything is sent: a part of an upload that is not open here could never be completed.
    const auto pState = FindUpload(pContext->m_pszUploadId);
    if (pState == nullptr) {
        return UnknownUpload("AwsS3Store::MultiPartUpload");
    }
    auto request = PartRequest(*pContext);
    Aws::Utils::Array<unsigned char> bytes(pContext->m_pBuf,
                                           static_cast<size_t>(pContext->m_nBufLen));
    Aws::Utils::Stream::PreallocatedStreamBuf buffer(bytes.GetUnderlyingData(), bytes.GetLength());
    request.SetBody(Aws::MakeShared<Aws::IOStream>(Mirqos::kAllocationTag, &buffer));

    const auto outcome = m_pClient->UploadPart(request);
    if (outcome.IsSuccess()) {
        KeepFirstETag(*pState, static_cast<uint32_t>(pContext->m_nPartNumber),
                      outcome.GetResult().GetETag());
        return 0;
    }
    ModuleLog(&g_ModuleLog, 1, "Part Upload:[%s:%s:%s:%d:%d] failed.", m_strRegion.c_str(),
              pContext->m_pszBucket, pContext->m_pszKey, request.GetPartNumber(),
              pContext->m_nBufLen);
    ModuleLog(&g_ModuleLog, 1, "Part Upload:[%s].", outcome.GetError().GetMessage().c_str());
    return Mirqos::StatusOf(outcome);
}

int32_t AwsS3Store::MultiPartCopy(CloudStoreMultiPartCopyContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    const auto pState = FindUpload(pContext->m_pszUploadId);
    if (pState == nullptr) {
        return UnknownUpload("AwsS3Store::MultiPartCopy");
    }
    const Aws::String range = Mirqos::RangeText(pContext->m_nRangeStart, pContext->m_nRangeEnd);
    Aws::S3::Model::UploadPartCopyRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, KeyForService(pContext->m_pszKey));
    Mirqos::SetUploadId(request, pContext->m_pszUploadId);
    request.SetPartNumber(static_cast<int>(pContext->m_nPartNumber));
    SetCopySource(request, pContext->m_pszCopySource);
    request.SetCopySourceRange(range);

    const auto outcome = m_pClient->UploadPartCopy(request);
    if (outcome.IsSuccess()) {
        KeepFirstETag(*pState, static_cast<uint32_t>(pContext->m_nPartNumber),
                      outcome.GetResult().GetCopyPartResult().GetETag());
        return 0;
    }
    ModuleLog(&g_ModuleLog, 1, "Part Upload:[%s:%s:%s:%d] Src[%s] Range[%s] failed.",
              m_strRegion.c_str(), pContext->m_pszBucket, pContext->m_pszKey,
              request.GetPartNumber(), pContext->m_pszCopySource, range.c_str());
    ModuleLog(&g_ModuleLog, 1, "Part Upload:[%s].", outcome.GetError().GetMessage().c_str());
    return Mirqos::StatusOf(outcome);
}

int32_t AwsS3Store::CompleteUpload(const CloudStoreFinishMultiPartUploadContext& context,
                                   MultiPartUploadState& state) {
    Aws::S3::Model::CompleteMultipartUploadRequest request;
    Mirqos::SetBucketName(request, context.m_pszBucket);
    SetObjectKey(request, KeyForService(context.m_pszKey));
    Mirqos::SetUploadId(request, context.m_pszUploadId);
    request.SetMultipartUpload(PartList(state, context.m_nPartCount));

    const auto outcome = m_pClient->CompleteMultipartUpload(request);
    if (outcome.IsSuccess()) {
        return 0;
    }
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    ModuleLog(&g_ModuleLog, 1, "Complete Multi-Part [%s:%s:%s:%s:%d] failed.", m_strRegion.c_str(),
              context.m_pszBucket, context.m_pszKey, context.m_pszUploadId, context.m_nPartCount);
    ModuleLog(&g_ModuleLog, 1, "Reason:[%s],EC:[%d].", outcome.GetError().GetMessage().c_str(),
              nStatus);
    return nStatus;
}

int32_t AwsS3Store::FinishMultiPartUpload(CloudStoreFinishMultiPartUploadContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    ++m_nFinishMultiPartCount;
    const auto pState = FindUpload(pContext->m_pszUploadId);
    if (pState == nullptr) {
        return UnknownUpload("AwsS3Store::FinishMultiPartUpload");
    }
    const int32_t nStatus = CompleteUpload(*pContext, *pState);
    // Also after a failure: the caller can only abort or start again.
    ForgetUpload(pContext->m_pszUploadId);
    return nStatus;
}

int32_t AwsS3Store::AbortMultiPartUpload(CloudStoreAbortMultiPartUploadContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    Aws::S3::Model::AbortMultipartUploadRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, KeyForService(pContext->m_pszKey));
    Mirqos::SetUploadId(request, pContext->m_pszUploadId);

    const auto outcome = m_pClient->AbortMultipartUpload(request);
    if (outcome.IsSuccess()) {
        // The state stays: only a finish takes an upload out of the map.
        return 0;
    }
    ModuleLog(&g_ModuleLog, 1, "Abort Multi-Upload:[%s:%s:%s:%s] failed.", m_strRegion.c_str(),
              pContext->m_pszBucket, pContext->m_pszKey, pContext->m_pszUploadId);
    ModuleLog(&g_ModuleLog, 1, "Abort message:[%s],", outcome.GetError().GetMessage().c_str());
    return Mirqos::StatusOf(outcome);
}
