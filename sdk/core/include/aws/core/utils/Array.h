#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <memory>
#include <utility>

namespace Aws::Utils {

/// A run of T whose length is set once. Not thread-safe.
template <typename T>
class Array {
public:
    /// `arraySize` value-initialised elements (numbers are 0). Throws std::bad_alloc.
    explicit Array(std::size_t arraySize = 0)
        : m_size(arraySize), m_data(arraySize > 0 ? std::make_unique<T[]>(arraySize) : nullptr) {}

    /// A copy of the `arraySize` elements at `arrayToCopy`.
    Array(const T* arrayToCopy, std::size_t arraySize)
        : m_size(arraySize), m_data(arraySize > 0 ? new T[arraySize] : nullptr) {
        // not filled with zeros first: the body of a part is some MiB
        std::copy_n(arrayToCopy, arraySize, m_data.get());
    }

    Array(const Array& other) : Array(other.m_data.get(), other.m_size) {}

    /// Leaves `other` empty.
    Array(Array&& other) noexcept
        : m_size(std::exchange(other.m_size, 0)), m_data(std::move(other.m_data)) {}

    virtual ~Array() = default;

    Array& operator=(const Array& other) {
        if (this != &other) {
            *this = Array(other);
        }
        return *this;
    }

    Array& operator=(Array&& other) noexcept {
        if (this != &other) {
            m_size = std::exchange(other.m_size, 0);
            m_data = std::move(other.m_data);
        }
        return *this;
    }

    /// `index` has to be below the length.
    const T& GetItem(std::size_t index) const {
        assert(index < m_size);
        return m_data[index];
    }
    T& GetItem(std::size_t index) {
        assert(index < m_size);
        return m_data[index];
    }
    const T& operator[](std::size_t index) const { return GetItem(index); }
    T& operator[](std::size_t index) { return GetItem(index); }

    std::size_t GetLength() const { return m_size; }

    /// The first element; null for an empty array. Valid until the array is assigned to or
    /// destroyed.
    T* GetUnderlyingData() const { return m_data.get(); }

private:
    std::size_t m_size;
    std::unique_ptr<T[]> m_data;
};

}  // namespace Aws::Utils
