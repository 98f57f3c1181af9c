#include "tests/support/FailingAllocation.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>
#include <thread>

namespace {

std::atomic<std::size_t> g_failingSize{0};
std::atomic<bool> g_hasFailed{false};

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    if (size != 0 && size == g_failingSize) {
        g_hasFailed = true;
        return nullptr;
    }
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size) {
    void* const block = operator new(size, std::nothrow);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

// The forms for arrays call those above where nothing replaces them; under a sanitizer its own
// would stand in between.
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}

void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    std::free(block);
}

void operator delete[](void* block) noexcept {
    std::free(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}

void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
    std::free(block);
}

namespace Mirqos::Test {

FailingAllocation::FailingAllocation(std::size_t size) {
    g_hasFailed = false;
    g_failingSize = size;
}

FailingAllocation::~FailingAllocation() {
    g_failingSize = 0;
}

bool FailingAllocation::WaitUntilFailed() const {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!g_hasFailed && std::chrono::steady_clock::now() < limit) {
        std::this_thread::yield();
    }
    return g_hasFailed;
}

}  // namespace Mirqos::Test
