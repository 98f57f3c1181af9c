#pragma once

#include <cstdint>
#include <memory>

#include "store/AsyncReadStatus.h"
#include "store/AwsS3Store.h"
#include "store/MultiPartUploadState.h"

/// Reaches into a store for what no host can do.
struct StoreTestAccess {
    /// Wakes the thread that waits for the batch of reads, whatever the counts are.
    static void WakeReader(AwsS3Store& store) {
        const std::lock_guard<std::mutex> storeLock(store.m_mtxStore);
        const std::lock_guard<std::mutex> lock(store.m_pReadStatus->m_mtxStatus);
        store.m_pReadStatus->m_cvComplete.notify_all();
    }

    /// The batch of reads that is going on, or null.
    static std::shared_ptr<AsyncReadStatus> Batch(AwsS3Store& store) {
        const std::lock_guard<std::mutex> lock(store.m_mtxStore);
        return store.m_pReadStatus;
    }

    /// What the store takes for the size of its work buffer.
    static std::int32_t BufferSize(const AwsS3Store& store) { return store.m_nBufferSize; }

    /// How many uploads the store was asked to open, and to finish in either way.
    static std::uint64_t InitMultiPartCount(const AwsS3Store& store) {
        return store.m_nInitMultiPartCount;
    }
    static std::uint64_t FinishMultiPartCount(const AwsS3Store& store) {
        return store.m_nFinishMultiPartCount;
    }

    /// What the store keeps of an open upload; null for one that is not open.
    static std::shared_ptr<MultiPartUploadState> Upload(AwsS3Store& store, const char* uploadId) {
        return store.FindUpload(uploadId);
    }
};
