#pragma once

#include "store/AsyncReadStatus.h"
#include "store/AwsS3Store.h"

/// Reaches into a store for what no host can do.
struct StoreTestAccess {
    /// Wakes the thread that waits for the batch of reads, whatever the counts are.
    static void WakeReader(AwsS3Store& store) {
        const std::lock_guard<std::mutex> storeLock(store.m_mtxStore);
        const std::lock_guard<std::mutex> lock(store.m_pReadStatus->m_mtxStatus);
        store.m_pReadStatus->m_cvComplete.notify_all();
    }
};
