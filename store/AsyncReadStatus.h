#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "store/AwsSdk.h"

/// One batch of asynchronous reads, from the first start to the end of the wait. The reads share
/// its ownership: an answer that comes after the wait finds its own batch, never the next one.
struct AsyncReadStatus {
    using Buffer = Aws::Utils::Array<unsigned char>;

    /// Receives a body of `nLength` bytes; kept until the wait, and as long as a read uses it.
    std::shared_ptr<Buffer> NewBuffer(size_t nLength) {
        auto pBuffer = Aws::MakeShared<Buffer>(Mirqos::kAllocationTag, nLength);
        const std::lock_guard<std::mutex> lock(m_mtxBuffers);
        m_vecBuffers.push_back(pBuffer);
        return pBuffer;
    }

    std::vector<std::shared_ptr<Buffer>> m_vecBuffers;  ///< guarded by m_mtxBuffers
    std::mutex m_mtxBuffers;                            ///< a leaf
    bool m_bWaiting = false;                            ///< guarded by m_mtxStatus
    std::atomic<uint32_t> m_nTotal{0};                  ///< reads started
    uint32_t m_nComplete = 0;                           ///< reads answered; guarded by m_mtxStatus
    int32_t m_nErrorCode = 0;                           ///< guarded by m_mtxStatus
    std::condition_variable m_cvComplete;
    /// Taken inside the store's mutex, never around it.
    std::mutex m_mtxStatus;
};
