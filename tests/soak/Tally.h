#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

namespace Mirqos::Soak {

/// What became of all operations of all threads.
class Tally {
public:
    void Count(const std::string& operation, std::int32_t status);
    int Operations() const;
    /// Operations that ended with this status.
    int EndedWith(std::int32_t status) const;
    /// Prints a line for each operation.
    void Print() const;

private:
    mutable std::mutex m_mutex;
    std::map<std::string, std::map<std::int32_t, int>> m_counts;
};

}  // namespace Mirqos::Soak
