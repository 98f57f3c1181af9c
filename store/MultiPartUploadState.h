#pragma once

#include <aws/core/utils/stream/PreallocatedStreamBuf.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "store/AwsSdk.h"

/// What a store knows of one open multipart upload. Handlers of parts in flight share its
/// ownership, so none ever works on a state that a finish has given up.
struct MultiPartUploadState {
    /// Entity tag of each part that the service has taken. Guarded by m_mtxState.
    std::unordered_map<uint32_t, Aws::String> m_mapPartETags;
    /// The bodies of asynchronous parts, kept until the finish. Requests share their ownership, so
    /// a body that a second part of the same number replaced goes as soon as no request can read
    /// it. Guarded by m_mtxState, so that several threads may submit parts of one upload.
    std::unordered_map<uint32_t, std::shared_ptr<Aws::Utils::Array<unsigned char>>>
        m_mapPartBuffers;
    std::unordered_map<uint32_t, std::shared_ptr<Aws::Utils::Stream::PreallocatedStreamBuf>>
        m_mapPartStreamBufs;
    /// Written by the submitting thread and read by handlers, under different locks.
    std::atomic<bool> m_bLastPartSubmitted{false};
    std::atomic<uint32_t> m_nPartsSubmitted{0};
    uint32_t m_nPartsDone = 0;  ///< guarded by m_mtxState
    int32_t m_nLastError = 0;   ///< of the part that failed last; guarded by m_mtxState
    std::condition_variable m_cvPartsDone;
    /// Nothing else of the store is locked while it is held.
    std::mutex m_mtxState;
    /// The state's hold on itself as long as its upload is open: the state of an upload that is
    /// never finished outlives its store. Guarded by the store's mutex.
    std::shared_ptr<MultiPartUploadState> m_pSelf;
};
