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
    /// one ReadObject may ask for, at most 2^31 - 1; 0 where nothing is read.
    StorePointer OpenStore(const std::string& bucket, std::uint64_t readRoom) const;

private:
    const Settings& m_settings;
    MIRQOSEngineStarter m_engine;
};

/// Throws Failure (OperationFailed) with the one line that says what failed, with which status, and
/// what the usual cause is; returns where the status is 0. Where the status may mean a missing
/// bucket it asks the service about that. `operation` is the library's name for it.
void CheckStatus(std::int32_t status, const char* operation, const ObjectUrl& url,
                 MIRQOSInterface& store);

}  // namespace Mirqos::Tool
