#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Mirqos::Test {

/// Counts of what became of the faults, operation by operation.
class Tally {
public:
    struct Row {
        int tried = 0;
        int hit = 0;
        int unharmed = 0;
        int mended = 0;                      ///< succeeded because the SDK tried again
        int passedOver = 0;                  ///< a request failed, and the status is 0, as promised
        std::map<std::int32_t, int> failed;  ///< times by status
    };

    /// The row of that operation, new or not. Rows stay in the order in which they were made.
    Row& Of(const std::string& operation);
    std::string Table() const;

private:
    std::vector<std::string> m_order;
    std::map<std::string, Row> m_rows;
};

}  // namespace Mirqos::Test
