#include <aws/s3/model/CopyObjectRequest.h>

#include <cassert>
#include <cstring>
#include <limits>
#include <string>

#include "log/ModuleLog.h"
#include "platform/file_system.h"
#include "platform/text.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/ObjectKey.h"
#include "store/Status.h"

namespace {

constexpr char kOperation[] = "AwsS3Store::CopyObject";
constexpr wchar_t kThroughFile[] = L"AwsS3Store::GCSMultipartCopyObject";
constexpr wchar_t kTemporaryPrefix[] = L"QVN";
constexpr uint64_t kDefaultPartSize = 8 * 1024 * 1024;
constexpr int32_t kInvalidParameter = 87;
constexpr auto kMissingKey = static_cast<int32_t>(Aws::S3::S3Errors::NO_SUCH_KEY);
constexpr auto kMissingByHead = static_cast<int32_t>(Aws::S3::S3Errors::RESOURCE_NOT_FOUND);

// A missing source that the caller forgives is a success that says so.
int32_t Forgiven(int32_t nStatus, CloudStoreCopyObjectContext& context) {
    if (nStatus == kMissingKey && context.m_bIgnoreMissingSource) {
        context.m_bSourceMissing = true;
        return 0;
    }
    return nStatus;
}

// Sizes with which the parts of a copy would never reach its end.
bool WouldNeverEnd(int32_t nBufferSize, uint64_t nPartSize) {
    const auto nUsed = static_cast<uint32_t>(nPartSize);
    return nBufferSize <= 0 || nUsed == 0 ||
           nUsed > static_cast<uint32_t>(std::numeric_limits<int32_t>::max());
}

}  // namespace

int32_t AwsS3Store::CopyObject(CloudStoreCopyObjectContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    pContext->m_bSourceMissing = false;
    ++m_nRequestCount;
    int32_t nStatus = 0;
    bool bFound = false;
    if (m_nProviderType == Mirqos::ProviderType::kGoogleCloudStorage) {
        if (pContext->m_nSrcSize == 0) {
            uint64_t nSize = 0;
            nStatus = GetObjectSize(pContext->m_pszSrcKey, bFound, nSize);
            if (nStatus == 0 && bFound) {
                pContext->m_nSrcSize = nSize;
            }
        }
        if (pContext->m_nPartSize == 0) {
            pContext->m_nPartSize = kDefaultPartSize;
        }
        if (pContext->m_nSrcSize > pContext->m_nPartSize) {
            return CopyLargeObject(*pContext, bFound);
        }
    }
    return CopyInOneRequest(*pContext, nStatus);
}

int32_t AwsS3Store::CopyInOneRequest(CloudStoreCopyObjectContext& context, int32_t nStatus) {
    Aws::String source = context.m_pszSrcBucket;
    source.append("/").append(context.m_pszSrcKey);
    if (SubstitutesKeys(m_nProviderType)) {
        EncodeObjectKey(source);
    }
    Aws::S3::Model::CopyObjectRequest request;
    Mirqos::SetBucketName(request, context.m_pszDstBucket);
    SetObjectKey(request, KeyForService(context.m_pszDstKey));
    if (*context.m_pszSrcBucket != '\0') {  // else the key's first part would be the bucket
        SetCopySource(request, source);
    }

    const auto outcome = m_pClient->CopyObject(request);
    if (outcome.IsSuccess()) {
        ModuleLog(&g_ModuleLog, 1, "Copy from [%s:%s:%s] to [%s:%s:%s] success.",
                  m_strRegion.c_str(), context.m_pszSrcBucket, context.m_pszSrcKey,
                  m_strRegion.c_str(), context.m_pszDstBucket, context.m_pszDstKey);
        // Not reset: after a failed size look-up the caller learns of that failure, copy or not.
        return nStatus;
    }
    nStatus = Forgiven(Mirqos::StatusOf(outcome), context);
    ModuleLog(&g_ModuleLog, 1, "Copy from [%s:%s:%s] to [%s:%s:%s] failed.", m_strRegion.c_str(),
              context.m_pszSrcBucket, context.m_pszSrcKey, m_strRegion.c_str(),
              context.m_pszDstBucket, context.m_pszDstKey);
    ModuleLog(&g_ModuleLog, 1, "[%s],EC:[%d]", outcome.GetError().GetMessage().c_str(), nStatus);
    return nStatus;
}

int32_t AwsS3Store::CopyLargeObject(CloudStoreCopyObjectContext& context, bool bFound) {
    ModuleLog(&g_ModuleLog, 1, "[%s] Source size for %s is [%llu], partsize [%llu]", kOperation,
              context.m_pszSrcKey, static_cast<unsigned long long>(context.m_nSrcSize),
              static_cast<unsigned long long>(context.m_nPartSize));
    int32_t nStatus = 0;
    if (WouldNeverEnd(m_nBufferSize, context.m_nPartSize)) {
        ModuleLog(&g_ModuleLog, 1, "[%s] buffer size [%d] or part size [%llu] cannot be used.",
                  kOperation, m_nBufferSize, static_cast<unsigned long long>(context.m_nPartSize));
        nStatus = kInvalidParameter;
    } else if (!bFound) {
        ModuleLog(&g_ModuleLog, 1, "[%s]Calling Headobject for %s in %s", kOperation,
                  context.m_pszSrcKey, context.m_pszSrcBucket);
        CloudStoreHeadObjectConext head;
        head.m_pszBucket = context.m_pszSrcBucket;
        head.m_pszKey = context.m_pszSrcKey;
        nStatus = HeadObject(&head);
        if (nStatus == kMissingByHead && context.m_bIgnoreMissingSource) {
            context.m_bSourceMissing = true;
            return 0;
        }
        if (nStatus == 0 && !head.m_bExists) {
            return 0;
        }
    }
    if (nStatus == 0) {
        nStatus = CopyThroughFile(context);
    }
    nStatus = Forgiven(nStatus, context);
    ModuleLog(&g_ModuleLog, 1,
              nStatus == 0 ? "Copy from [%s:%s:%s] to [%s:%s:%s] success EC:[%d]."
                           : "Copy from [%s:%s:%s] to [%s:%s:%s] failed EC:[%d].",
              m_strRegion.c_str(), context.m_pszSrcBucket, context.m_pszSrcKey, m_strRegion.c_str(),
              context.m_pszDstBucket, context.m_pszDstKey, nStatus);
    return nStatus;
}

int32_t AwsS3Store::CopyThroughFile(CloudStoreCopyObjectContext& context) {
    Mirqos::FileSystem& files = Mirqos::TheFileSystem();
    std::wstring strFolder;
    if (const auto result = files.TemporaryFolder(strFolder); !result.ok) {
        ModuleLogW(&g_ModuleLog, 1, L"[%s]Getting temporary path failed. EC:%lu.", kThroughFile,
                   static_cast<unsigned long>(result.error));
        return static_cast<int32_t>(result.error);
    }
    ModuleLogW(&g_ModuleLog, 1, L"[%s] Temporary path is %s.", kThroughFile, strFolder.c_str());
    std::wstring strFile;
    if (const auto result = files.NewTemporaryFile(strFolder, kTemporaryPrefix, strFile);
        !result.ok) {
        ModuleLogW(&g_ModuleLog, 1, L"[%s]temporary filename %s failed. EC:%lu.", kThroughFile,
                   strFile.c_str(), static_cast<unsigned long>(result.error));
        return static_cast<int32_t>(result.error);
    }
    ModuleLogW(&g_ModuleLog, 1, L"[%s] Temporary file is %s.", kThroughFile, strFile.c_str());
    int32_t nStatus = Mirqos::StatusOrOutOfMemory([&] {
        const int32_t nLoaded = DownloadFileForCopyObject(context, strFile);
        return nLoaded != 0 ? nLoaded : UploadFileForCopyObject(context, strFile);
    });
    if (const auto result = files.Delete(strFile); !result.ok) {
        // A file left behind is a failure of its own, also after a copy that succeeded.
        nStatus = static_cast<int32_t>(result.error);
        ModuleLogW(&g_ModuleLog, 1, L"[%s] Temporary file delete failed %s. ret:[%d] ",
                   kThroughFile, strFile.c_str(), nStatus);
    } else {
        ModuleLogW(&g_ModuleLog, 1, L"[%s] Temporary file deleted %s ret[%d]", kThroughFile,
                   strFile.c_str(), nStatus);
    }
    return nStatus;
}

int32_t AwsS3Store::GetObjectSize(const char* pszKey, bool& bFound, uint64_t& nSize) {
    constexpr char kName[] = "AwsS3Store::GetObjectSize";
    const Aws::String key = KeyForService(pszKey);
    CloudStoreListObjectConext listing;
    listing.m_pszBucket = GetBucketName();
    listing.m_pszPrefix = key.c_str();
    const int32_t nStatus = ListObjects(&listing);
    if (nStatus != 0) {
        ModuleLog(&g_ModuleLog, 1, "[%s]Failed to list object with prefix %s in bucket %s. EC:%d.",
                  kName, key.c_str(), GetBucketName(), nStatus);
        return nStatus;
    }
    bFound = false;
    nSize = 0;
    // Listed keys come back with "@" where the encoded key has "+", so on the provider types that
    // substitute, a key with either is never found here: hosts then give the size themselves.
    for (uint64_t i = 0; i < listing.m_nObjectCount && !bFound; ++i) {
        const CloudStoreObjInfo& object = listing.m_pObjects[i];
        if (key == object.m_szKey) {
            nSize = object.m_nSize;
            bFound = true;
        }
    }
    ReleaseObjectData(&listing);
    if (!bFound) {
        ModuleLog(&g_ModuleLog, 1, "[%s]Object %s does not exist in bucket %s", kName, key.c_str(),
                  GetBucketName());
    }
    return 0;
}
