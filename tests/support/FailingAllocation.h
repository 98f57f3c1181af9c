#pragma once

#include <cstddef>

namespace Mirqos::Test {

/// While one exists, `new` of exactly this many bytes fails, on every thread, with std::bad_alloc
/// or null as its form says. A program that uses it has its global operators new and delete
/// replaced.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t size);
    ~FailingAllocation();
    /// Blocks until one has failed. False when that takes longer than half a minute.
    bool WaitUntilFailed() const;
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
};

}  // namespace Mirqos::Test
