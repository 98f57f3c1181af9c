#pragma once

#include <cstddef>

namespace Mirqos::Test {

/// While one exists, `new` of exactly this many bytes throws std::bad_alloc, on every thread. A
/// program that uses it has its global operator new replaced.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t size);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
};

}  // namespace Mirqos::Test
