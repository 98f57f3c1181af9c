#pragma once

#include <aws/core/utils/memory/AWSMemory.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace Aws {

#ifdef MIRQOS_SDK_OWN_ALLOCATOR
/// As an SDK built with its own memory manager has it: Aws::String is then no std::string.
template <typename T>
class Allocator {
public:
    using value_type = T;

    Allocator() = default;
    template <typename U>
    Allocator(const Allocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        void* const memory = Malloc("Aws::Allocator", count * sizeof(T));
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t) noexcept { Free(memory); }

    friend bool operator==(const Allocator&, const Allocator&) noexcept { return true; }
    friend bool operator!=(const Allocator&, const Allocator&) noexcept { return false; }
};
#else
template <typename T>
using Allocator = std::allocator<T>;
#endif

/// Shared ownership of a new T. Throws std::bad_alloc.
template <typename T, typename... Args>
std::shared_ptr<T> MakeShared(const char* /*allocationTag*/, Args&&... args) {
    return std::allocate_shared<T>(Allocator<T>(), std::forward<Args>(args)...);
}

}  // namespace Aws
