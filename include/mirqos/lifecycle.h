#ifndef MIRQOS_LIFECYCLE_H
#define MIRQOS_LIFECYCLE_H

#include <cstdint>

#include <mirqos/api.h>
#include <mirqos/records.h>
#include <mirqos/store.h>

/// Starting and stopping the library, creating and releasing stores. The four functions have C
/// linkage, so that a host may also look them up by their plain names.
///
/// Starts and stops are counted. The count is neither atomic nor locked: the host starts and stops
/// from one thread at a time and never while a store exists. A library once loaded stays in the
/// process: unloading it only gives the host's reference back.
extern "C" {

/// Starts the S3 SDK where the count is 0 and counts each call.
/// `context` gives the level of the SDK's log statements; null, or a level outside 0 to 6, means 3.
/// The SDK reads the level when it starts, so a later call's level holds only for log systems
/// created after it. Returns 0 always.
MIRQOS_API std::int32_t InitCloudStoreContext(CloudStoreContext* context);

/// Takes one start back and stops the S3 SDK when none is left. A call without a start stops the
/// SDK all the same. Returns 0 always.
MIRQOS_API std::int32_t UnInitCloudStoreContext();

/// Makes a store, which MIRQOSInterface::Init then makes usable. `context` is not read and may be
/// null. The caller gives the store back with ReleaseCloudStoreInterface; `delete` is not for it,
/// because its memory comes from the library's allocator. Never null: an allocation failure leaves
/// as std::bad_alloc (a host that catches it and is built with MSVC is compiled with /EHs, because
/// under /EHsc functions with C linkage are taken never to throw). May be called from any thread.
MIRQOS_API MIRQOSInterface* CreateCloudStoreInterface(CloudStoreContext* context);

/// Destroys a store; null is ignored. No call on the store may be running. What was started
/// asynchronously is waited for first, through all of its attempts: reads still deliver into their
/// buffers. So not from DllMain, where the threads that would answer may be gone.
MIRQOS_API void ReleaseCloudStoreInterface(MIRQOSInterface* store);

}  // extern "C"

/// Keeps the library started for a scope: starts it when built with true, and then takes that start
/// back when destroyed. It is not to be shared between threads.
class MIRQOS_API MIRQOSEngineStarter {
public:
    /// Calls InitCloudStoreContext with its own copy of `context` when `start` is true.
    MIRQOSEngineStarter(bool start, CloudStoreContext context);
    /// A copied guard would take the same start back a second time.
    MIRQOSEngineStarter(const MIRQOSEngineStarter&) = delete;
    /// Copies the flag and nothing else: neither starts nor stops. The caller keeps starts and
    /// stops balanced.
    MIRQOSEngineStarter& operator=(const MIRQOSEngineStarter& rhs);
    ~MIRQOSEngineStarter();

    bool m_bStarted;  ///< whether this guard takes a start back when destroyed
};

#endif
