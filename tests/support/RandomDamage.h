#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

#include "tests/support/RawBytes.h"

namespace Mirqos::Test {

/// Damages shared memory as a process that went wrong would. The same damage for the same seed.
class RandomDamage {
public:
    explicit RandomDamage(std::uint32_t seed) : m_random(seed) {}

    std::size_t Below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }

    /// Writes a number, any or one of those that mean something, anywhere into the block.
    void Strike(RawBytes& block, std::size_t size) { block.SetNumber(Below(size - 3), Number()); }

    std::uint32_t Number() {
        constexpr std::uint32_t telling[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x00410041};
        return m_random() % 2 == 0 ? static_cast<std::uint32_t>(m_random())
                                   : telling[Below(sizeof telling / sizeof *telling)];
    }

private:
    std::mt19937_64 m_random;
};

}  // namespace Mirqos::Test
