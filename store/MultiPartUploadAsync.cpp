#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/stream/PreallocatedStreamBuf.h>
#include <aws/s3/model/UploadPartRequest.h>

#include <cassert>
#include <exception>
#include <new>
#include <utility>

#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"
#include "store/MultiPartUploadState.h"
#include "store/Status.h"

using Aws::Utils::Stream::PreallocatedStreamBuf;
using Bytes = Aws::Utils::Array<unsigned char>;

namespace {

// The body of one part: a stream over a copy of the caller's bytes. A request that holds it keeps
// all three alive.
struct PartBody {
    PartBody(std::shared_ptr<Bytes> pBytes, std::shared_ptr<PreallocatedStreamBuf> pBuffer)
        : m_pBytes(std::move(pBytes)), m_pBuffer(std::move(pBuffer)), m_stream(m_pBuffer.get()) {}

    std::shared_ptr<Bytes> m_pBytes;
    std::shared_ptr<PreallocatedStreamBuf> m_pBuffer;
    Aws::IOStream m_stream;
};

std::shared_ptr<Aws::IOStream> KeepBody(const CloudStoreMultiPartUploadContext& context,
                                        MultiPartUploadState& state) {
    auto pBytes = Aws::MakeShared<Bytes>(Mirqos::kAllocationTag, context.m_pBuf,
                                         static_cast<size_t>(context.m_nBufLen));
    auto pBuffer = Aws::MakeShared<PreallocatedStreamBuf>(
        Mirqos::kAllocationTag, pBytes->GetUnderlyingData(), pBytes->GetLength());
    auto pBody = Aws::MakeShared<PartBody>(Mirqos::kAllocationTag, pBytes, pBuffer);
    const auto nPartNumber = static_cast<uint32_t>(context.m_nPartNumber);
    {
        const std::lock_guard<std::mutex> lock(state.m_mtxState);
        // What stood there before goes after the unlock: to free a large block takes its time.
        state.m_mapPartBuffers[nPartNumber].swap(pBytes);
        state.m_mapPartStreamBufs[nPartNumber].swap(pBuffer);
    }
    return {pBody, &pBody->m_stream};
}

// One more part has been answered; wakes the finish after the last of them. The caller holds
// m_mtxState.
void CountAnswer(MultiPartUploadState& state, const std::lock_guard<std::mutex>& /*held*/) {
    ++state.m_nPartsDone;
    if (state.m_bLastPartSubmitted && state.m_nPartsDone == state.m_nPartsSubmitted) {
        state.m_cvPartsDone.notify_all();
    }
}

// A part that was counted but not handed over counts as failed: the finish would wait for ever.
void RecordLostPart(MultiPartUploadState& state, int32_t nError) {
    const std::lock_guard<std::mutex> lock(state.m_mtxState);
    state.m_nLastError = nError;
    CountAnswer(state, lock);
}

}  // namespace

int32_t AwsS3Store::DoMultiPartUploadAsync(CloudStoreMultiPartUploadContext* pContext) {
    constexpr char kOperation[] = "AwsS3Store::DoMultiPartUploadAsync";
    assert(pContext != nullptr && m_pClient != nullptr && pContext->m_nBufLen >= 0);
    ++m_nRequestCount;
    auto request = PartRequest(*pContext);
    std::shared_ptr<MultiPartUploadState> pState;
    {
        const std::lock_guard<std::mutex> lock(m_mtxStore);
        const auto found = m_mapUploads.find(pContext->m_pszUploadId);
        if (found == m_mapUploads.end()) {
            return UnknownUpload(kOperation);
        }
        pState = found->second;
        // Counted before the hand-over, so that no answer can come before its own submission.
        ++pState->m_nPartsSubmitted;
        if (pContext->m_bLastPart) {
            pState->m_bLastPartSubmitted = true;
        }
    }
    m_pCalls->Begin();
    try {
        request.SetBody(KeepBody(*pContext, *pState));
        m_pClient->UploadPartAsync(
            // The region is copied: a later Init may change the store's while the part is sent.
            request,
            [this, pCalls = m_pCalls, pState, strRegion = m_strRegion](
                const Aws::S3::S3Client*, const auto& sent, const auto& outcome, const auto&) {
                HandleUploadPartAsync(*pState, strRegion, sent, outcome);
                pCalls->End();
            });
    } catch (const std::exception& failure) {
        ModuleLog(&g_ModuleLog, 1, "%s part [%d] was not handed over: [%s].", kOperation,
                  request.GetPartNumber(), failure.what());
        m_pCalls->End();
        RecordLostPart(*pState, Mirqos::kOutOfMemory);
    }
    return 0;
}

void AwsS3Store::HandleUploadPartAsync(MultiPartUploadState& state, const std::string& strRegion,
                                       const Aws::S3::Model::UploadPartRequest& request,
                                       const Aws::S3::Model::UploadPartOutcome& outcome) {
    if (!IsOpen(state)) {
        UnknownUpload("AwsS3Store::HandleUploadPartAsync");
        return;
    }
    const std::lock_guard<std::mutex> lock(state.m_mtxState);
    if (outcome.IsSuccess()) {
        try {
            // The answer handled last stands, unlike that of a part sent synchronously.
            state.m_mapPartETags[static_cast<uint32_t>(request.GetPartNumber())] =
                outcome.GetResult().GetETag();
        } catch (const std::bad_alloc&) {
            state.m_nLastError = Mirqos::kOutOfMemory;  // nobody catches above a handler
        }
    } else {
        state.m_nLastError = Mirqos::StatusOf(outcome);
        ModuleLog(&g_ModuleLog, 1, "Part Upload:[%s:%s:%s:%d] failed.", strRegion.c_str(),
                  request.GetBucket().c_str(), request.GetKey().c_str(), request.GetPartNumber());
        ModuleLog(&g_ModuleLog, 1, "Part Upload:[%s].", outcome.GetError().GetMessage().c_str());
    }
    CountAnswer(state, lock);
}

int32_t AwsS3Store::FinishMultiPartUploadAsync(CloudStoreFinishMultiPartUploadContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    ++m_nFinishMultiPartCount;
    const auto pState = FindUpload(pContext->m_pszUploadId);
    if (pState == nullptr) {
        return UnknownUpload("AwsS3Store::FinishMultiPartUploadAsync");
    }
    int32_t nStatus = 0;
    {
        std::unique_lock<std::mutex> lock(pState->m_mtxState);
        // Whoever finishes submits no more. A host that marked no part as the last would otherwise
        // wait for ever for a wake-up that no handler gives.
        pState->m_bLastPartSubmitted = true;
        pState->m_cvPartsDone.wait(
            lock, [&] { return pState->m_nPartsDone == pState->m_nPartsSubmitted; });
        nStatus = pState->m_nLastError;
        pState->m_mapPartStreamBufs.clear();
        pState->m_mapPartBuffers.clear();
    }
    if (nStatus == 0) {
        nStatus = CompleteUpload(*pContext, *pState);
    }
    ForgetUpload(pContext->m_pszUploadId);
    return nStatus;
}
