#include "tests/support/FailingAllocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> g_failingSize{0};

}  // namespace

void* operator new(std::size_t size) {
    if (size != 0 && size == g_failingSize) {
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}

namespace Mirqos::Test {

FailingAllocation::FailingAllocation(std::size_t size) {
    g_failingSize = size;
}

FailingAllocation::~FailingAllocation() {
    g_failingSize = 0;
}

}  // namespace Mirqos::Test
