#include "log/dbg/win32/NewGuid.h"

#include <cstring>

#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {

std::optional<LogGuid> NewGuid() {
    UUID uuid = {};
    const RPC_STATUS status = Windows().uuidCreate(&uuid);
    if (status != RPC_S_OK && status != RPC_S_UUID_LOCAL_ONLY) {
        return std::nullopt;
    }
    LogGuid guid;
    static_assert(sizeof(guid) == sizeof(uuid));
    std::memcpy(&guid, &uuid, sizeof(guid));
    return guid;
}

}  // namespace LOGUTILS
