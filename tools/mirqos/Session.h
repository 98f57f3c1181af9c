#pragma once

#include <mirqos/mirqos.h>

#include <cstdint>
#include <memory>
#include <string>

#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Settings.h"

namespace Mirqos::Tool {

struct StoreDeleter {
    void operator()(MIRQOSInterface* store) const { ReleaseCloudStoreInterface(store); }
};
using StorePointer = std::unique_ptr<MIRQOSInterface, StoreDeleter>;

/// The library, started for as long as the session lives; stores have to be gone before it.
class Session {
public:
    explicit Session(const Settings& settings);

    /// A store for one thread's reads, or for any number of other calls. `readRoom`: the most that
    /// one ReadObject may ask for, at most 2^31 - 1; 0 where nothing is read. `asyncThreads`: of
    /// the library, for asynchronous calls; 0 where there are none.
    StorePointer OpenStore(const std::string& bucket, std::uint64_t readRoom,
                           unsigned asyncThreads = 0) const;

private:
    const Settings& m_settings;
    MIRQOSEngineStarter m_engine;
};

/// Whether the service says that there is such a bucket for these credentials.
bool BucketAnswers(MIRQOSInterface& store, const std::string& bucket);

/// Whether the service says that there is such an object; a missing bucket gives "no" as well.
/// Throws Failure where it says neither.
bool ObjectAnswers(MIRQOSInterface& store, const ObjectUrl& url);

/// Throws Failure (OperationFailed) with the one line that says what failed, with which status, and
/// `why`. `operation` is the library's name for it.
[[noreturn]] void FailOperation(std::int32_t status, const char* operation, const ObjectUrl& url,
                                const std::string& why);

/// The same with the usual cause; returns where the status is 0. Where the status may mean a
/// missing bucket it asks the service about that.
void CheckStatus(std::int32_t status, const char* operation, const ObjectUrl& url,
                 MIRQOSInterface& store);

}  // namespace Mirqos::Tool
