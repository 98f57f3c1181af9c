#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

/// Memory of the SDK. The tags name an allocation's purpose; they are not kept. Thread-safe.
namespace Aws {

/// Memory aligned for any fundamental type, to be given back with Free; null when there is none.
void* Malloc(const char* allocationTag, std::size_t allocationSize);
/// Takes null too.
void Free(void* memoryPtr);

/// A new T, to be destroyed with Delete; null when there is no memory.
template <typename T, typename... Args>
T* New(const char* allocationTag, Args&&... args) {
    static_assert(alignof(T) <= alignof(std::max_align_t), "Malloc aligns no further");
    void* const memory = Malloc(allocationTag, sizeof(T));
    if (memory == nullptr) {
        return nullptr;
    }
    try {
        return new (memory) T(std::forward<Args>(args)...);
    } catch (...) {
        Free(memory);
        throw;
    }
}

/// Destroys what New made, also through a base class with a virtual destructor. Takes null too.
template <typename T>
void Delete(T* pointerToT) {
    if (pointerToT == nullptr) {
        return;
    }
    void* memory = nullptr;
    if constexpr (std::is_polymorphic_v<T>) {
        // A base need not stand at the front of the object.
        memory = const_cast<void*>(dynamic_cast<const volatile void*>(pointerToT));
    } else {
        memory = pointerToT;
    }
    pointerToT->~T();
    Free(memory);
}

template <typename T>
struct Deleter {
    Deleter() = default;
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Deleter(const Deleter<U>&) {}
    void operator()(T* pointerToT) const { Delete(pointerToT); }
};

/// Sole ownership of what New made.
template <typename T>
using UniquePtr = std::unique_ptr<T, Deleter<T>>;

template <typename T, typename... Args>
UniquePtr<T> MakeUnique(const char* allocationTag, Args&&... args) {
    return UniquePtr<T>(New<T>(allocationTag, std::forward<Args>(args)...));
}

}  // namespace Aws
