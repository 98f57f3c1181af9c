#include <aws/s3/model/BucketLocationConstraint.h>
#include <aws/s3/model/CreateBucketConfiguration.h>
#include <aws/s3/model/CreateBucketRequest.h>
#include <aws/s3/model/DeleteBucketRequest.h>
#include <aws/s3/model/HeadBucketRequest.h>

#include <cassert>
#include <memory>

#include "log/ModuleLog.h"
#include "platform/bounded_copy.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/PackedTextList.h"

namespace {

constexpr int32_t kNoBucketNamed = -1;
constexpr int32_t kTooManyBuckets = 110;

}  // namespace

int32_t AwsS3Store::CreateBucket(CloudStoreCreateBucketContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    if (pContext->m_pszBucket == nullptr) {
        return kNoBucketNamed;
    }
    Aws::S3::Model::CreateBucketRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    if (pContext->m_pszRegion != nullptr) {
        Aws::S3::Model::CreateBucketConfiguration configuration;
        configuration.SetLocationConstraint(
            Aws::S3::Model::BucketLocationConstraintMapper::GetBucketLocationConstraintForName(
                pContext->m_pszRegion));
        request.SetCreateBucketConfiguration(configuration);
    }

    const auto outcome = m_pClient->CreateBucket(request);
    if (outcome.IsSuccess()) {
        ModuleLog(&g_ModuleLog, 1, "Create bucket:[%s] successful!", pContext->m_pszBucket);
        return 0;
    }
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    const Aws::String& message = outcome.GetError().GetMessage();
    ModuleLog(&g_ModuleLog, 1, "Create bucket:[%s] failed! [%s], EC:[%d]", pContext->m_pszBucket,
              message.c_str(), nStatus);
    // The SDK does not know this code; it arrives as an unknown error that names it in its message.
    if (message.find("TooManyBuckets") != Aws::String::npos) {
        return kTooManyBuckets;
    }
    return nStatus;
}

int32_t AwsS3Store::DeleteBucket(CloudStoreDeleteBucketContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    if (pContext->m_pszBucket == nullptr) {
        return kNoBucketNamed;
    }
    Aws::S3::Model::DeleteBucketRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);

    const auto outcome = m_pClient->DeleteBucket(request);
    if (outcome.IsSuccess()) {
        ModuleLog(&g_ModuleLog, 1, "delete bucket:[%s] successful!", pContext->m_pszBucket);
        return 0;
    }
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    ModuleLog(&g_ModuleLog, 1, "delete bucket:[%s] failed.[%s]:[%d].", pContext->m_pszBucket,
              outcome.GetError().GetMessage().c_str(), nStatus);
    return nStatus;
}

int32_t AwsS3Store::HeadBucket(CloudStoreHeadBucketConext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    pContext->m_bExists = false;
    ++m_nRequestCount;
    Aws::S3::Model::HeadBucketRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);

    const auto outcome = m_pClient->HeadBucket(request);
    if (outcome.IsSuccess()) {
        pContext->m_bExists = true;
        ModuleLog(&g_ModuleLog, 1, "%s the bucket exists[%s]!", "AwsS3Store::HeadBucket",
                  pContext->m_pszBucket);
    } else {
        ModuleLog(&g_ModuleLog, 1, "%s, Error: %s, Err Msg: %s, bucket: %s ",
                  "AwsS3Store::HeadBucket", outcome.GetError().GetExceptionName().c_str(),
                  outcome.GetError().GetMessage().c_str(), pContext->m_pszBucket);
    }
    // A missing bucket and a refused request look alike to the caller: m_bExists is the answer.
    return 0;
}

int32_t AwsS3Store::ListBucket(CloudStoreListBucketContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    const auto outcome = m_pClient->ListBuckets();
    if (!outcome.IsSuccess()) {
        const int32_t nStatus = Mirqos::StatusOf(outcome);
        ModuleLog(&g_ModuleLog, 1, "list bucket failed:[%s]. EC:[%d].",
                  outcome.GetError().GetMessage().c_str(), nStatus);
        return nStatus;
    }
    const auto& buckets = outcome.GetResult().GetBuckets();
    if (buckets.empty()) {
        ModuleLog(&g_ModuleLog, 1, "There is no bucket.");
        return 0;
    }
    size_t nTextBytes = 0;
    for (const auto& bucket : buckets) {
        nTextBytes += bucket.GetName().size();
    }
    const size_t nSize = Mirqos::PackedSize(nTextBytes, buckets.size());
    auto pNames = std::make_unique<char[]>(nSize);
    Mirqos::PackedTextWriter names(pNames.get(), nSize);
    for (const auto& bucket : buckets) {
        int nCode = names.Append(bucket.GetName());
        assert(nCode == Mirqos::kCopyDone);
        nCode = names.EndEntry();
        assert(nCode == Mirqos::kCopyDone);
        static_cast<void>(nCode);
    }
    pContext->m_pBucketNames = pNames.release();
    return 0;
}

void AwsS3Store::ReleaseBucketList(CloudStoreListBucketContext* pContext) {
    assert(pContext != nullptr);
    delete[] pContext->m_pBucketNames;
    pContext->m_pBucketNames = nullptr;
}
