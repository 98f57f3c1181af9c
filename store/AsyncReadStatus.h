#pragma once

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "store/AwsSdk.h"

/// One batch of asynchronous reads, from the first start to the end of the wait. The reads share
/// its ownership: an answer that comes after the wait finds its own batch, never the next one.
struct AsyncReadStatus {
    using Buffer = Aws::Utils::Array<unsigned char>;

    /// Receives a body of `nLength` bytes; kept until the wait, and as long as a read uses it.
    std::shared_ptr<Buffer> NewBuffer(size_t nLength) {
        Buffer spare = TakeSpare(nLength);
        auto pBuffer = spare.GetLength() != 0
                           ? Aws::MakeShared<Buffer>(Mirqos::kAllocationTag, std::move(spare))
                           : Aws::MakeShared<Buffer>(Mirqos::kAllocationTag, nLength);
        const std::lock_guard<std::mutex> lock(m_mtxBuffers);
        if (m_vecSpare.capacity() <= m_vecBuffers.size()) {
            m_vecSpare.reserve(2 * m_vecBuffers.size() + 1);  // taking memory back must not fail
        }
        m_vecBuffers.push_back(pBuffer);
        return pBuffer;
    }
    /// The read of `buffer` has ended: the next one receives into its memory, which is warm, where
    /// new memory would cost as much as the bytes that arrive in it.
    void TakeBack(Buffer& buffer) {
        const std::lock_guard<std::mutex> lock(m_mtxBuffers);
        m_vecSpare.emplace_back(std::move(buffer));
    }

    /// An installed SDK's array does not promise that it moves without failing, so a growing vector
    /// of them would copy their bytes.
    struct Spare {
        explicit Spare(Buffer&& taken) noexcept : bytes(std::move(taken)) {}
        Spare(Spare&& other) noexcept : bytes(std::move(other.bytes)) {}
        Spare& operator=(Spare&& other) noexcept {
            bytes = std::move(other.bytes);
            return *this;
        }
        Buffer bytes;
    };

    std::vector<std::shared_ptr<Buffer>> m_vecBuffers;  ///< guarded by m_mtxBuffers
    std::vector<Spare> m_vecSpare;                      ///< guarded by m_mtxBuffers
    std::mutex m_mtxBuffers;                            ///< a leaf
    bool m_bWaiting = false;                            ///< guarded by m_mtxStatus
    std::atomic<uint32_t> m_nTotal{0};                  ///< reads started
    uint32_t m_nComplete = 0;                           ///< reads answered; guarded by m_mtxStatus
    int32_t m_nErrorCode = 0;                           ///< guarded by m_mtxStatus
    std::condition_variable m_cvComplete;
    /// Taken inside the store's mutex, never around it.
    std::mutex m_mtxStatus;

private:
    Buffer TakeSpare(size_t nLength) {
        const std::lock_guard<std::mutex> lock(m_mtxBuffers);
        const auto spare =
            std::find_if(m_vecSpare.begin(), m_vecSpare.end(),
                         [nLength](const Spare& one) { return one.bytes.GetLength() == nLength; });
        if (spare == m_vecSpare.end()) {
            return Buffer();
        }
        Buffer taken = std::move(spare->bytes);
        m_vecSpare.erase(spare);
        return taken;
    }
};
