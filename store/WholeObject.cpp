#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/stream/PreallocatedStreamBuf.h>
#include <aws/core/utils/stream/ResponseStream.h>
#include <aws/s3/model/GetObjectRequest.h>
#include <aws/s3/model/PutObjectRequest.h>

#include <cassert>
#include <utility>

#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/ObjectBody.h"
#include "store/ObjectKey.h"
#include "store/ReceivingBuffer.h"

using Aws::Utils::Stream::DefaultUnderlyingStream;
using Aws::Utils::Stream::PreallocatedStreamBuf;

int32_t AwsS3Store::WriteObject(CloudStoreWriteObjectContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    Aws::S3::Model::PutObjectRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, KeyForService(pContext->m_pszKey));

    Aws::Utils::Array<unsigned char> bytes(pContext->m_pBuf,
                                           static_cast<size_t>(pContext->m_nBufLen));
    PreallocatedStreamBuf buffer(bytes.GetUnderlyingData(), bytes.GetLength());
    request.SetBody(Aws::MakeShared<Aws::IOStream>(Mirqos::kAllocationTag, &buffer));

    const auto outcome = m_pClient->PutObject(request);
    if (outcome.IsSuccess()) {
        return 0;
    }
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    ModuleLog(&g_ModuleLog, 1,
              "%s failed. EC:[%d], region:[%s], bucket:[%s], OID:[%s], ErrMsg[%s].",
              "AwsS3Store::WriteObject", nStatus, m_strRegion.c_str(), m_strBucket.c_str(),
              pContext->m_pszKey, outcome.GetError().GetMessage().c_str());
    return nStatus;
}

int32_t AwsS3Store::ReadObject(CloudStoreReadObjectContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    assert(pContext->m_nReadLen <= m_pWorkBuffer->GetLength());
    ++m_nRequestCount;
    std::unique_lock<std::mutex> lock(m_mtxWorkBuffer);
    Aws::S3::Model::GetObjectRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, KeyForService(pContext->m_pszKey));
    request.SetRange(Mirqos::RangeText(pContext->m_nRangeStart, pContext->m_nRangeEnd));
    request.SetResponseStreamFactory([this, nReadLen = pContext->m_nReadLen]() -> Aws::IOStream* {
        auto pBuffer = Aws::MakeUnique<Mirqos::ReceivingBuffer>(
            Mirqos::kAllocationTag, m_pWorkBuffer->GetUnderlyingData(), nReadLen);
        return Aws::New<DefaultUnderlyingStream>(Mirqos::kAllocationTag, std::move(pBuffer));
    });

    auto outcome = m_pClient->GetObject(request);
    const char* pszFault = nullptr;
    if (outcome.IsSuccess()) {
        std::streambuf& body = *outcome.GetResult().GetBody().rdbuf();
        pszFault = Mirqos::RangeFault(outcome.GetResult(), body, *pContext);
        if (pszFault == nullptr) {
            pContext->m_nReadSize = Mirqos::CopyBody(body, pContext->m_pBuf);
            return 0;
        }
    }
    lock.unlock();
    const Aws::Client::AWSError<Aws::S3::S3Errors> error =
        outcome.IsSuccess()
            ? Aws::Client::AWSError<Aws::S3::S3Errors>(Mirqos::kRangeFault, "", pszFault, false)
            : Aws::Client::AWSError<Aws::S3::S3Errors>(outcome.GetError());
    const auto nStatus = Mirqos::StatusOfError(error);
    ModuleLog(&g_ModuleLog, 1, "region:[%s], bucket:[%s] read object:[%s] failed.",
              m_strRegion.c_str(), m_strBucket.c_str(), pContext->m_pszKey);
    ModuleLog(&g_ModuleLog, 1, "[%s:%s],EC:[%d].", error.GetMessage().c_str(),
              error.GetExceptionName().c_str(), nStatus);
    return nStatus;
}
