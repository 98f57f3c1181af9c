#include "tests/soak/Tally.h"

#include <cstdio>

namespace Mirqos::Soak {

void Tally::Count(const std::string& operation, std::int32_t status) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_counts[operation][status];
}

int Tally::Operations() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    int sum = 0;
    for (const auto& [operation, statuses] : m_counts) {
        for (const auto& [status, count] : statuses) {
            sum += count;
        }
    }
    return sum;
}

int Tally::EndedWith(std::int32_t status) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    int sum = 0;
    for (const auto& [operation, statuses] : m_counts) {
        const auto found = statuses.find(status);
        sum += found == statuses.end() ? 0 : found->second;
    }
    return sum;
}

void Tally::Print() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::printf("%-24s  times by status\n", "operation");
    for (const auto& [operation, statuses] : m_counts) {
        std::printf("%-24s", operation.c_str());
        for (const auto& [status, count] : statuses) {
            std::printf("  %d: %d", status, count);
        }
        std::printf("\n");
    }
}

}  // namespace Mirqos::Soak
