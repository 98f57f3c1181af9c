#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Aws::Client {

/// What a caller hands to an asynchronous call and gets back in its handler.
class AsyncCallerContext {
public:
    AsyncCallerContext() = default;
    explicit AsyncCallerContext(Aws::String uuid) : m_uuid(std::move(uuid)) {}
    virtual ~AsyncCallerContext() = default;

    /// The caller's own name for the call; empty unless set.
    const Aws::String& GetUUID() const { return m_uuid; }
    void SetUUID(const Aws::String& uuid) { m_uuid = uuid; }

private:
    Aws::String m_uuid;
};

}  // namespace Aws::Client
