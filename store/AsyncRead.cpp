#include <aws/core/client/AsyncCallerContext.h>
#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/stream/ResponseStream.h>
#include <aws/s3/model/GetObjectRequest.h>

#include <atomic>
#include <cassert>
#include <exception>
#include <utility>

#include "log/ModuleLog.h"
#include "store/AsyncReadStatus.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/ObjectBody.h"
#include "store/ObjectKey.h"
#include "store/ReceivingBuffer.h"
#include "store/Status.h"

using Aws::Utils::Stream::DefaultUnderlyingStream;

struct AwsS3Store::TransferHandleAsyncContext : Aws::Client::AsyncCallerContext {
    /// The stream of the latest attempt, owned by the SDK: it lives as long as the outcome, which
    /// not every SDK lets a handler take the stream from.
    mutable std::atomic<Aws::IOStream*> m_pResponseStream{nullptr};
    CloudStoreReadObjectContext m_oReadContext;
    std::shared_ptr<AsyncReadStatus> m_pBatch;
};

namespace {

// The response stream's buffer; the bytes live as long as it does.
class ReadBuffer : public Mirqos::ReceivingBuffer {
public:
    ReadBuffer(std::shared_ptr<AsyncReadStatus> pBatch,
               std::shared_ptr<AsyncReadStatus::Buffer> pBytes)
        : ReceivingBuffer(pBytes->GetUnderlyingData(), pBytes->GetLength()),
          m_pBatch(std::move(pBatch)),
          m_pBytes(std::move(pBytes)) {}
    ~ReadBuffer() override { m_pBatch->TakeBack(*m_pBytes); }

private:
    std::shared_ptr<AsyncReadStatus> m_pBatch;
    std::shared_ptr<AsyncReadStatus::Buffer> m_pBytes;
};

}  // namespace

int32_t AwsS3Store::ReadObjectAsync(CloudStoreReadObjectContext* pContext) {
    static constexpr char kOperation[] = "AwsS3Store::ReadObjectAsync";
    assert(pContext != nullptr && m_pClient != nullptr);
    ModuleLog(&g_ModuleLog, 1, "%s enter.", kOperation);
    if (static_cast<int64_t>(pContext->m_nRangeEnd) <
            static_cast<int64_t>(pContext->m_nRangeStart) ||
        pContext->m_nReadLen == 0) {
        ModuleLog(&g_ModuleLog, 1, "%s leave. nothing to read.", kOperation);
        return 0;
    }
    ++m_nRequestCount;
    Aws::S3::Model::GetObjectRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, KeyForService(pContext->m_pszKey));
    const Aws::String range = Mirqos::RangeText(pContext->m_nRangeStart, pContext->m_nRangeEnd);
    request.SetRange(range);

    std::shared_ptr<AsyncReadStatus> pBatch;
    {
        const std::lock_guard<std::mutex> lock(m_mtxStore);
        if (m_pReadStatus == nullptr) {
            m_pReadStatus = std::make_shared<AsyncReadStatus>();
        }
        pBatch = m_pReadStatus;
    }
    ++pBatch->m_nTotal;
    m_pCalls->Begin();
    try {
        auto pTransfer = Aws::MakeShared<TransferHandleAsyncContext>(Mirqos::kAllocationTag);
        pTransfer->m_oReadContext = *pContext;
        pTransfer->m_pBatch = pBatch;
        request.SetResponseStreamFactory([pTransfer]() -> Aws::IOStream* {
            ModuleLog(&g_ModuleLog, 2, "%s lambda enter.", kOperation);
            const auto nLength = static_cast<size_t>(pTransfer->m_oReadContext.m_nReadLen);
            auto pBuffer = Aws::MakeUnique<ReadBuffer>(Mirqos::kAllocationTag, pTransfer->m_pBatch,
                                                       pTransfer->m_pBatch->NewBuffer(nLength));
            auto* pStream =
                Aws::New<DefaultUnderlyingStream>(Mirqos::kAllocationTag, std::move(pBuffer));
            pTransfer->m_pResponseStream.exchange(pStream);
            return pStream;
        });
        m_pClient->GetObjectAsync(
            request,
            [this, pCalls = m_pCalls](const Aws::S3::S3Client*, const auto& sent,
                                      const auto& outcome, const auto& context) {
                HandleAsyncReadFunc(sent, outcome,
                                    static_cast<const TransferHandleAsyncContext&>(*context));
                pCalls->End();
            },
            pTransfer);
    } catch (const std::exception& failure) {
        // Counted, so it has to be answered: the wait would never end.
        ModuleLog(&g_ModuleLog, 1, "%s the read was not handed over: [%s].", kOperation,
                  failure.what());
        m_pCalls->End();
        const std::lock_guard<std::mutex> lock(pBatch->m_mtxStatus);
        pBatch->m_nErrorCode = Mirqos::kOutOfMemory;
        ++pBatch->m_nComplete;
    }
    ModuleLog(&g_ModuleLog, 1, "%s Leave. GetRange = [%s], read len = [%d]", kOperation,
              range.c_str(), static_cast<int>(pContext->m_nReadLen));
    return 0;
}

void AwsS3Store::HandleAsyncReadFunc(const Aws::S3::Model::GetObjectRequest& request,
                                     const Aws::S3::Model::GetObjectOutcome& outcome,
                                     const TransferHandleAsyncContext& transfer) {
    constexpr char kOperation[] = "AwsS3Store::HandleAsyncReadFunc";
    ModuleLog(&g_ModuleLog, 2, "[%s]. enter.", kOperation);
    const std::lock_guard<std::mutex> storeLock(m_mtxStore);
    const CloudStoreReadObjectContext& read = transfer.m_oReadContext;
    const char* pszKey = request.GetKey().c_str();
    const int nStart = static_cast<int>(read.m_nRangeStart);
    AsyncReadStatus& batch = *transfer.m_pBatch;
    // An answer after its wait belongs to no batch any more: the caller's buffer may be gone.
    if (m_pReadStatus.get() != &batch) {
        ModuleLog(&g_ModuleLog, 2,
                  "[%s]. unknown error: m_pReadStatus is null. Key: %s Context_Start = %d",
                  kOperation, pszKey, nStart);
        return;
    }
    if (read.m_pBuf == nullptr) {
        ModuleLog(&g_ModuleLog, 1,
                  "[%s]. unknown error: oReadContext.m_pBuf is null. Key: %s Context_Start = %d",
                  kOperation, pszKey, nStart);
    }
    ModuleLog(&g_ModuleLog, 2, "[%s]. enter. Key: %s Context_Start = %d", kOperation, pszKey,
              nStart);

    std::unique_lock<std::mutex> lock(batch.m_mtxStatus);
    if (!outcome.IsSuccess()) {
        batch.m_nErrorCode = Mirqos::StatusOf(outcome);
    } else if (read.m_pBuf == nullptr) {
        batch.m_nErrorCode = Mirqos::kUnknownError;  // nowhere to deliver to is no success
    } else if (const char* pszFault = Mirqos::RangeFault(
                   outcome.GetResult(), *transfer.m_pResponseStream.load()->rdbuf(), read);
               pszFault != nullptr) {
        batch.m_nErrorCode = static_cast<int32_t>(Mirqos::kRangeFault);
        ModuleLog(&g_ModuleLog, 1, "[%s]. Key: %s Range = [%s] failed: %s", kOperation, pszKey,
                  request.GetRange().c_str(), pszFault);
    } else if (batch.m_nErrorCode == 0) {
        // After a failure nothing more is delivered, and the failure stays: a success that replaced
        // it would tell the caller that all buffers hold their data.
        const uint64_t nCopied =
            Mirqos::CopyBody(*transfer.m_pResponseStream.load()->rdbuf(), read.m_pBuf);
        ModuleLog(&g_ModuleLog, 1, "[%s]. pBuf:[%lld] len:[%d] contentLen:[%d] availSize=[%d].",
                  kOperation, static_cast<long long>(reinterpret_cast<intptr_t>(read.m_pBuf)),
                  static_cast<int>(read.m_nReadLen),
                  static_cast<int>(outcome.GetResult().GetContentLength()),
                  static_cast<int>(nCopied));
    }
    ++batch.m_nComplete;
    const uint32_t nTotal = batch.m_nTotal;
    const uint32_t nComplete = batch.m_nComplete;
    const int32_t nErrorCode = batch.m_nErrorCode;
    if (batch.m_bWaiting && nTotal == nComplete) {
        ModuleLog(&g_ModuleLog, 2, "[%s]. notify_one start.", kOperation);
        batch.m_cvComplete.notify_all();
        ModuleLog(&g_ModuleLog, 2, "[%s]. notify_one end.", kOperation);
    }
    lock.unlock();
    ModuleLog(&g_ModuleLog, 2, "[%s]. leave. Total Request= %d , complete = %d, EC = %d",
              kOperation, static_cast<int>(nTotal), static_cast<int>(nComplete), nErrorCode);
}

int32_t AwsS3Store::WaitForReadObjectAsync(CloudStoreReadObjectContext* pContext) {
    constexpr char kOperation[] = "AwsS3Store::WaitForReadObjectAsync";
    assert(pContext != nullptr && m_pClient != nullptr);
    const int nReadLen = static_cast<int>(pContext->m_nReadLen);
    ModuleLog(&g_ModuleLog, 1, "%s enter. key = [%s], read len = [%d]", kOperation,
              pContext->m_pszKey, nReadLen);
    std::shared_ptr<AsyncReadStatus> pBatch;
    {
        // Before the batch's own mutex and not inside it: handlers take the two in this order.
        const std::lock_guard<std::mutex> lock(m_mtxStore);
        pBatch = m_pReadStatus;
    }
    if (pBatch == nullptr) {
        ModuleLog(&g_ModuleLog, 1,
                  "%s unknown error. m_pReadStatus is null. key = [%s], read len = [%d]",
                  kOperation, pContext->m_pszKey, nReadLen);
        return Mirqos::kUnknownError;
    }
    try {
        std::unique_lock<std::mutex> lock(pBatch->m_mtxStatus);
        pBatch->m_bWaiting = true;
        if (pBatch->m_nTotal == pBatch->m_nComplete) {
            ModuleLog(&g_ModuleLog, 1, "%s no need wait.", kOperation);
        } else {
            ModuleLog(&g_ModuleLog, 2, "%s cv wait start. total = [%d] complete count = [%d]",
                      kOperation, static_cast<int>(pBatch->m_nTotal),
                      static_cast<int>(pBatch->m_nComplete));
            // Once, and not until the counts agree: a wake-up before all answers is reported below.
            pBatch->m_cvComplete.wait(lock);
            ModuleLog(&g_ModuleLog, 2, "%s cv wait end. total = [%d] complete count = [%d]",
                      kOperation, static_cast<int>(pBatch->m_nTotal),
                      static_cast<int>(pBatch->m_nComplete));
        }
    } catch (...) {
        // What the wait did not see, the counts below tell.
        ModuleLog(&g_ModuleLog, 1, "%s enter. exception.", kOperation);
    }
    const std::lock_guard<std::mutex> storeLock(m_mtxStore);
    const std::lock_guard<std::mutex> lock(pBatch->m_mtxStatus);
    if (pBatch->m_nTotal != pBatch->m_nComplete && pBatch->m_nErrorCode == 0) {
        ModuleLog(&g_ModuleLog, 1, "%s unknown error. total = %d complete = %d", kOperation,
                  static_cast<int>(pBatch->m_nTotal), static_cast<int>(pBatch->m_nComplete));
        pBatch->m_nErrorCode = Mirqos::kUnknownError;
    }
    m_pReadStatus.reset();
    return pBatch->m_nErrorCode;
}
