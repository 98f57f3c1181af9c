#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include "log/ModuleLog.h"
#include "platform/file_system.h"
#include "platform/text.h"
#include "store/AwsS3Store.h"
#include "store/Status.h"

using Mirqos::SystemFile;
using Mirqos::SystemResult;
using Mirqos::WidenText;

// The two halves of a copy through a temporary file. Their lines hold file names, which are wide.

namespace {

constexpr uint32_t kMostChunk = 4 * 1024 * 1024;
constexpr int32_t kWriteFault = 29;
constexpr int32_t kReadFault = 30;
constexpr int32_t kCannotCreate = 82;

constexpr wchar_t kDownload[] = L"AwsS3Store::DownloadFileForCopyObject";
constexpr wchar_t kUpload[] = L"AwsS3Store::UploadFileForCopyObject";

unsigned long Number(uint64_t n) {
    return static_cast<unsigned long>(n);
}

unsigned long long Long(uint64_t n) {
    return static_cast<unsigned long long>(n);
}

// Gives the file its whole size at once, so that a full disk shows before anything is fetched.
SystemResult Preallocate(SystemFile& file, uint64_t nSize, const std::wstring& strFile) {
    for (const uint64_t nOffset : {nSize, uint64_t{0}}) {
        if (const SystemResult result = file.Seek(nOffset); !result.ok) {
            ModuleLogW(&g_ModuleLog, 1, L"[%s]SetFilePointerEx %s offset %lld failed. EC:%lu.",
                       kDownload, strFile.c_str(), static_cast<long long>(nOffset),
                       Number(result.error));
            return result;
        }
        if (nOffset == 0) {
            break;
        }
        if (const SystemResult result = file.EndHere(); !result.ok) {
            ModuleLogW(&g_ModuleLog, 1, L"[%s]SetEndOfFile %s failed. EC:%lu.", kDownload,
                       strFile.c_str(), Number(result.error));
            return result;
        }
    }
    return {};
}

}  // namespace

int32_t AwsS3Store::DownloadFileForCopyObject(const CloudStoreCopyObjectContext& context,
                                              const std::wstring& strFile) {
    const uint64_t nSize = context.m_nSrcSize;
    if (nSize == 0) {
        return 0;
    }
    std::unique_ptr<SystemFile> pFile;
    if (const auto result = Mirqos::TheFileSystem().Create(strFile, pFile); !result.ok) {
        ModuleLogW(&g_ModuleLog, 1, L"[%s]Failed to create file %s. EC:%lu.", kDownload,
                   strFile.c_str(), Number(result.error));
        return static_cast<int32_t>(result.error);
    }
    if (const auto result = Preallocate(*pFile, nSize, strFile); !result.ok) {
        return static_cast<int32_t>(result.error);
    }
    const uint32_t nChunk = std::min(static_cast<uint32_t>(m_nBufferSize), kMostChunk);
    const std::unique_ptr<unsigned char[]> pBuffer(new (std::nothrow) unsigned char[nChunk]);
    if (pBuffer == nullptr) {
        ModuleLogW(&g_ModuleLog, 1, L"[%s]Failed to allocate buffer, size: %lu.", kDownload,
                   Number(nChunk));
        return Mirqos::kOutOfMemory;
    }
    const std::wstring strKey = WidenText(context.m_pszSrcKey);
    ModuleLogW(&g_ModuleLog, 1, L"[%s]The size of object %s is %llu.", kDownload, strKey.c_str(),
               Long(nSize));

    for (uint64_t nOffset = 0; nOffset < nSize;) {
        const auto nAmount = static_cast<uint32_t>(std::min<uint64_t>(nSize - nOffset, nChunk));
        CloudStoreReadObjectContext read;
        read.m_pszKey = context.m_pszSrcKey;
        read.m_pBuf = pBuffer.get();
        read.m_pszBucket = context.m_pszSrcBucket;
        read.m_nReadLen = nAmount;
        read.m_nReadSize = 0;
        read.m_nRangeStart = nOffset;
        read.m_nRangeEnd = nOffset + nAmount - 1;
        const int32_t nStatus = ReadObject(&read);
        if (nStatus != 0) {
            ModuleLogW(&g_ModuleLog, 1,
                       L"[%s]Failed to read object:[%s], bytes2Read:[%lu], readed:%llu, "
                       L"offset:%llu. EC:%lu.",
                       kDownload, strKey.c_str(), Number(nAmount), Long(read.m_nReadSize),
                       Long(nOffset), Number(static_cast<uint32_t>(nStatus)));
            return nStatus;
        }
        if (read.m_nReadSize != nAmount) {
            ModuleLogW(&g_ModuleLog, 1,
                       L"[%s]Failed to read object:[%s], bytes2Read:[%lu], readed:%llu, "
                       L"offset:%llu.",
                       kDownload, strKey.c_str(), Number(nAmount), Long(read.m_nReadSize),
                       Long(nOffset));
            return kReadFault;
        }
        ModuleLogW(&g_ModuleLog, 1, L"[%s]Reading object dwToRead=%lu", kDownload, Number(nAmount));
        uint32_t nWritten = 0;
        if (const auto result = pFile->Write(pBuffer.get(), nAmount, nWritten); !result.ok) {
            ModuleLogW(&g_ModuleLog, 1, L"[%s]WriteFile %s failed. ToWriteBytes=%lu, EC:%lu.",
                       kDownload, strFile.c_str(), Number(nAmount), Number(result.error));
            return static_cast<int32_t>(result.error);
        }
        if (nWritten < nAmount) {
            ModuleLogW(&g_ModuleLog, 1,
                       L"[%s]WriteFile %s failed. ToWriteBytes=%lu, Write=%lu, EC:%lu.", kDownload,
                       strFile.c_str(), Number(nAmount), Number(nWritten), Number(kWriteFault));
            return kWriteFault;
        }
        nOffset += nAmount;
    }
    ModuleLogW(&g_ModuleLog, 1, L"[%s] Dwonloaded object %s to file [%s] success.", kDownload,
               strKey.c_str(), strFile.c_str());
    return 0;
}

int32_t AwsS3Store::UploadFileForCopyObject(const CloudStoreCopyObjectContext& context,
                                            const std::wstring& strFile) {
    const auto nPartSize = static_cast<uint32_t>(context.m_nPartSize);
    if (!Mirqos::TheFileSystem().Exists(strFile)) {
        ModuleLogW(&g_ModuleLog, 1, L"[%s]Failed to create directory for file:%s. EC:%lu.", kUpload,
                   strFile.c_str(), Number(kCannotCreate));
        return kCannotCreate;
    }
    const std::unique_ptr<unsigned char[]> pBuffer(new (std::nothrow) unsigned char[nPartSize]);
    if (pBuffer == nullptr) {
        return Mirqos::kOutOfMemory;
    }
    const std::wstring strKey = WidenText(context.m_pszDstKey);
    CloudStoreInitMultiPartUploadContext init;
    init.m_pszBucket = context.m_pszDstBucket;
    init.m_pszKey = context.m_pszDstKey;
    init.m_nPartSize = context.m_nPartSize;
    CloudStoreInitMultiPartUploadOutcome upload;
    int32_t nStatus = InitMultiPartUpload(&init, &upload);
    if (nStatus != 0) {
        ModuleLogW(&g_ModuleLog, 1, L"[%s]:Initialize multi-part upload for:[%s] failed.EC:[%d].",
                   kUpload, strKey.c_str(), nStatus);
        return nStatus;
    }
    uint64_t nPartsTried = 0;
    nStatus = Mirqos::StatusOrOutOfMemory([&] {
        return UploadParts(context, strFile, upload.m_szUploadId, pBuffer.get(), nPartSize,
                           nPartsTried);
    });
    if (nStatus == 0) {
        ModuleLogW(&g_ModuleLog, 1,
                   L"[%s] Uploaded object %s to bucket [%s] from file [%s] success.", kUpload,
                   strKey.c_str(), WidenText(context.m_pszDstBucket).c_str(), strFile.c_str());
        return 0;
    }
    // A failure before the first part leaves the upload open: hosts sweep such uploads themselves.
    if (nPartsTried > 0) {
        ModuleLogW(&g_ModuleLog, 1, L"[%s] Aborting multipart upload from object [%s] bucket [%s] ",
                   kUpload, strKey.c_str(), WidenText(context.m_pszDstBucket).c_str());
        CloudStoreAbortMultiPartUploadContext abort;
        abort.m_pszUploadId = upload.m_szUploadId;
        abort.m_pszBucket = context.m_pszDstBucket;
        abort.m_pszKey = context.m_pszDstKey;
        if (const int32_t nAborted = AbortMultiPartUpload(&abort); nAborted != 0) {
            ModuleLogW(&g_ModuleLog, 1,
                       L"[%s]:abort multi-part upload for object:[%s] failed.EC:[%d].", kUpload,
                       strKey.c_str(), nAborted);
        }
    }
    return nStatus;
}

int32_t AwsS3Store::UploadParts(const CloudStoreCopyObjectContext& context,
                                const std::wstring& strFile, const char* pszUploadId,
                                unsigned char* pBuffer, uint32_t nPartSize, uint64_t& nPartsTried) {
    const std::wstring strKey = WidenText(context.m_pszDstKey);
    std::unique_ptr<SystemFile> pFile;
    if (const auto result = Mirqos::TheFileSystem().Open(strFile, pFile); !result.ok) {
        ModuleLogW(&g_ModuleLog, 1, L"[SYNC]:[%s]:failed to open file:[%s].EC:[%d].", kUpload,
                   strFile.c_str(), static_cast<int>(result.error));
        return static_cast<int32_t>(result.error);
    }
    uint64_t nFileSize = 0;
    if (const auto result = pFile->Size(nFileSize); !result.ok) {
        ModuleLogW(&g_ModuleLog, 1, L"[SYNC]:[%s]:failed to get file:[%s] size.EC:[%d].", kUpload,
                   strFile.c_str(), static_cast<int>(result.error));
        return static_cast<int32_t>(result.error);
    }
    ModuleLogW(&g_ModuleLog, 1, L"[%s] Size of file %s is [%llu].", kUpload, strFile.c_str(),
               Long(nFileSize));
    for (uint64_t nOffset = 0; nOffset < nFileSize;) {
        const bool bLast = nOffset + nPartSize >= nFileSize;
        uint32_t nGot = 0;
        if (const auto result = pFile->Read(pBuffer, nPartSize, nGot); !result.ok) {
            ModuleLogW(&g_ModuleLog, 1, L"[SYNC]:[%s]:failed to read file:[%s].EC:[%d].", kUpload,
                       strFile.c_str(), static_cast<int>(result.error));
            return static_cast<int32_t>(result.error);
        }
        if (nGot < std::min<uint64_t>(nPartSize, nFileSize - nOffset)) {
            // The file became shorter under our hands: the rest would be missing in the object.
            ModuleLogW(&g_ModuleLog, 1, L"[SYNC]:[%s]:failed to read file:[%s].EC:[%d].", kUpload,
                       strFile.c_str(), kReadFault);
            return kReadFault;
        }
        nOffset += nGot;
        ++nPartsTried;
        CloudStoreMultiPartUploadContext part;
        part.m_pszUploadId = pszUploadId;
        part.m_pszKey = context.m_pszDstKey;
        part.m_pszBucket = context.m_pszDstBucket;
        part.m_nPartNumber = nPartsTried;
        part.m_pBuf = pBuffer;
        part.m_nBufLen = static_cast<int32_t>(nGot);
        part.m_bLastPart = bLast;
        if (const int32_t nStatus = MultiPartUpload(&part); nStatus != 0) {
            ModuleLogW(&g_ModuleLog, 1, L"[%s]:upload part:[%d] of object:[%s] failed.EC:[%d].",
                       kUpload, static_cast<int>(nPartsTried), strKey.c_str(), nStatus);
            return nStatus;
        }
        if (!bLast) {
            continue;
        }
        CloudStoreFinishMultiPartUploadContext finish;
        finish.m_pszUploadId = pszUploadId;
        finish.m_pszBucket = context.m_pszDstBucket;
        finish.m_pszKey = context.m_pszDstKey;
        finish.m_nPartCount = static_cast<int32_t>(nPartsTried);
        const int32_t nStatus = FinishMultiPartUpload(&finish);
        if (nStatus != 0) {
            ModuleLogW(&g_ModuleLog, 1,
                       L"[%s]:complete multi-part upload for object:[%s] failed.EC:[%d].", kUpload,
                       strKey.c_str(), nStatus);
        }
        return nStatus;
    }
    return 0;
}
