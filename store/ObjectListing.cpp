#include <aws/s3/model/ListObjectsV2Request.h>
#include <aws/s3/model/ListObjectsV2Result.h>

#include <algorithm>
#include <cassert>
#include <list>
#include <memory>
#include <new>
#include <vector>

#include "log/ModuleLog.h"
#include "platform/bounded_copy.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/ObjectKey.h"
#include "store/ProviderMarker.h"
#include "store/Status.h"

using Aws::S3::Model::ListObjectsV2Request;
using Aws::S3::Model::ListObjectsV2Result;
using Objects = Aws::Vector<Aws::S3::Model::Object>;

namespace {

// A whole listing never hands out more; the caller that needs the rest lists by segments.
constexpr size_t kMostObjects = 1000;

// What is handed out of one page: its first entries. They stay where the answer put them, so that
// each key is copied once, into its record.
struct Share {
    const Objects* pEntries;
    size_t nTaken;
};

void FillRecord(const Aws::S3::Model::Object& object, bool bDecodeKeys, CloudStoreObjInfo& record) {
    record.m_nSize = static_cast<uint64_t>(object.GetSize());
    if (bDecodeKeys) {
        Aws::String key = object.GetKey();
        DecodeObjectKey(key);
        Mirqos::CopyTextOrEndProcess(record.m_szKey, sizeof record.m_szKey, key.c_str());
    } else {
        Mirqos::CopyTextOrEndProcess(record.m_szKey, sizeof record.m_szKey,
                                     object.GetKey().c_str());
    }
}

// Copies the listed objects into one block that ReleaseObjectData frees. No objects, no block.
int32_t HandOut(const std::vector<Share>& shares, size_t nCount, bool bDecodeKeys,
                const char* pszOperation, CloudStoreListObjectConext* pContext) {
    if (nCount == 0) {
        return 0;
    }
    std::unique_ptr<CloudStoreObjInfo[]> pRecords(new (std::nothrow) CloudStoreObjInfo[nCount]);
    if (pRecords == nullptr) {
        ModuleLog(&g_ModuleLog, 1, "[%s]Failed to allocated memory. size: %llu.", pszOperation,
                  static_cast<unsigned long long>(nCount * sizeof(CloudStoreObjInfo)));
        return Mirqos::kOutOfMemory;
    }
    CloudStoreObjInfo* pRecord = pRecords.get();
    for (const Share& share : shares) {
        for (size_t i = 0; i < share.nTaken; ++i) {
            FillRecord((*share.pEntries)[i], bDecodeKeys, *pRecord++);
        }
    }
    pContext->m_nObjectCount = nCount;
    pContext->m_pObjects = pRecords.release();
    return 0;
}

void ClearResult(CloudStoreListObjectConext* pContext) {
    pContext->m_pObjects = nullptr;
    pContext->m_nObjectCount = 0;
    pContext->m_bTruncated = false;
}

void LogEnter(const char* pszOperation, const ListObjectsV2Request& request) {
    ModuleLog(&g_ModuleLog, 3, "%s enter. bucket:[%s] prefix:[%s].", pszOperation,
              request.GetBucket().c_str(), request.GetPrefix().c_str());
}

void LogComplete(const char* pszOperation, int32_t nStatus, const ListObjectsV2Request& request,
                 uint64_t nCount, bool bTruncated) {
    ModuleLog(&g_ModuleLog, 1,
              "%s complete with %d. bucket:[%s] prefix:[%s] count:[%llu], Truncated:[%d].",
              pszOperation, nStatus, request.GetBucket().c_str(), request.GetPrefix().c_str(),
              static_cast<unsigned long long>(nCount), bTruncated ? 1 : 0);
}

template <class Outcome>
void LogFailure(const char* pszOperation, const ListObjectsV2Request& request,
                const Outcome& outcome, int32_t nStatus) {
    ModuleLog(&g_ModuleLog, 1, "[%s]ListObjectsV2 in bucket:[%s] failed.", pszOperation,
              request.GetBucket().c_str());
    ModuleLog(&g_ModuleLog, 1, "[%s]The error message:[%s], EC:[%d]", pszOperation,
              outcome.GetError().GetMessage().c_str(), nStatus);
}

}  // namespace

void AwsS3Store::EncodeListingForMarkedProvider(const char* pszOperation,
                                                ListObjectsV2Request& request) const {
    if (m_nProviderType != Mirqos::ProviderType::kEndpointService || m_strEndPoint.empty()) {
        return;
    }
    ModuleLog(&g_ModuleLog, 1, "%s EndPoint[%s] ", pszOperation, m_strEndPoint.c_str());
    if (Mirqos::HasProviderMarker(m_strEndPoint)) {
        // The keys of the answer are handed out as they arrive, still encoded: hosts expect it.
        request.WithEncodingType(Aws::S3::Model::EncodingType::url);
    }
}

int32_t AwsS3Store::ListObjects(CloudStoreListObjectConext* pContext) {
    constexpr char kOperation[] = "AwsS3Store::ListObjects";
    assert(pContext != nullptr && m_pClient != nullptr);
    ListObjectsV2Request request;
    Mirqos::SetBucketName(
        request, pContext->m_pszBucket != nullptr ? pContext->m_pszBucket : GetBucketName());
    if (pContext->m_pszPrefix != nullptr) {
        request.SetPrefix(pContext->m_pszPrefix);
    }
    if (pContext->m_bCheckProviderMarker) {
        EncodeListingForMarkedProvider(kOperation, request);
    }
    LogEnter(kOperation, request);

    int32_t nStatus = 0;
    std::list<ListObjectsV2Result> pages;
    std::vector<Share> shares;
    size_t nCount = 0;
    ClearResult(pContext);
    ++m_nRequestCount;
    auto outcome = m_pClient->ListObjectsV2(request);
    while (outcome.IsSuccess()) {
        const auto& page = pages.emplace_back(outcome.GetResultWithOwnership());
        const Objects& entries = page.GetContents();
        const size_t nTaken = std::min(entries.size(), kMostObjects - nCount);
        shares.push_back({&entries, nTaken});
        nCount += nTaken;
        if (nTaken < entries.size()) {
            pContext->m_bTruncated = true;
            break;
        }
        if (!page.GetIsTruncated()) {
            break;
        }
        ModuleLog(&g_ModuleLog, 2,
                  "[%s]Truncated! There are %llu objects returned by ListObjectsV2. "
                  "NextContinuationToken:%s.",
                  kOperation, static_cast<unsigned long long>(entries.size()),
                  page.GetNextContinuationToken().c_str());
        if (nCount >= kMostObjects) {
            pContext->m_bTruncated = true;
            break;
        }
        if (entries.empty() && page.GetNextContinuationToken() == request.GetContinuationToken()) {
            // The same request would get the same answer, and that for ever.
            ModuleLog(
                &g_ModuleLog, 1,
                "[%s]The listing of bucket:[%s] does not go on: an empty page names itself as "
                "the next.",
                kOperation, request.GetBucket().c_str());
            pContext->m_bTruncated = true;
            break;
        }
        request.SetContinuationToken(page.GetNextContinuationToken());
        ++m_nRequestCount;
        outcome = m_pClient->ListObjectsV2(request);
    }
    if (!outcome.IsSuccess()) {
        nStatus = static_cast<int32_t>(outcome.GetError().GetErrorType());
        LogFailure(kOperation, request, outcome, nStatus);
    }
    // The error type decides, not the outcome: with type 0 the caller gets what was gathered.
    if (nStatus == 0) {
        nStatus = HandOut(shares, nCount, SubstitutesKeys(m_nProviderType), kOperation, pContext);
    }
    LogComplete(kOperation, nStatus, request, pContext->m_nObjectCount, pContext->m_bTruncated);
    return nStatus;
}

int32_t AwsS3Store::ListObjectsSegmented(CloudStoreListObjectConext* pContext) {
    constexpr char kOperation[] = "AwsS3Store::ListObjectsSegmented";
    assert(pContext != nullptr && m_pClient != nullptr);
    ListObjectsV2Request request;
    // The other way round than ListObjects, and to stay so: hosts set the field to anything and
    // mean the configured bucket. Without it the request names no bucket and fails.
    if (pContext->m_pszBucket != nullptr) {
        Mirqos::SetBucketName(request, GetBucketName());
    }
    EncodeListingForMarkedProvider(kOperation, request);
    if (pContext->m_pszPrefix != nullptr) {
        request.SetPrefix(pContext->m_pszPrefix);
    }
    if (pContext->m_szContinuationToken[0] != '\0') {
        request.SetContinuationToken(pContext->m_szContinuationToken);
    }
    LogEnter(kOperation, request);

    ++m_nRequestCount;
    ClearResult(pContext);
    bool bPageTruncated = false;
    int32_t nStatus = 0;
    const auto outcome = m_pClient->ListObjectsV2(request);
    if (!outcome.IsSuccess()) {
        nStatus = Mirqos::StatusOf(outcome);
        LogFailure(kOperation, request, outcome, nStatus);
    } else {
        const auto& page = outcome.GetResult();
        bPageTruncated = page.GetIsTruncated();
        const Objects& entries = page.GetContents();
        nStatus = HandOut({{&entries, entries.size()}}, entries.size(),
                          SubstitutesKeys(m_nProviderType), kOperation, pContext);
        if (nStatus == 0) {
            pContext->m_bTruncated = bPageTruncated;
            Mirqos::CopyTextOrEndProcess(
                pContext->m_szContinuationToken, sizeof pContext->m_szContinuationToken,
                bPageTruncated ? page.GetNextContinuationToken().c_str() : "");
        }
    }
    LogComplete(kOperation, nStatus, request, pContext->m_nObjectCount, bPageTruncated);
    return nStatus;
}

int32_t AwsS3Store::ReleaseObjectData(CloudStoreListObjectConext* pContext) {
    constexpr char kOperation[] = "AwsS3Store::ReleaseObjectData";
    assert(pContext != nullptr);
    ModuleLog(&g_ModuleLog, 3, "%s enter. bucket:[%s] prefix:[%s] count:[%llu].", kOperation,
              pContext->m_pszBucket, pContext->m_pszPrefix,
              static_cast<unsigned long long>(pContext->m_nObjectCount));
    if (pContext->m_pObjects != nullptr) {
        delete[] pContext->m_pObjects;
        pContext->m_pObjects = nullptr;
        pContext->m_nObjectCount = 0;
    }
    ModuleLog(&g_ModuleLog, 3, "%s leave.", kOperation);
    return 0;
}
