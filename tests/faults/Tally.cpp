#include "tests/faults/Tally.h"

#include <iomanip>
#include <sstream>

namespace Mirqos::Test {

Tally::Row& Tally::Of(const std::string& operation) {
    if (m_rows.count(operation) == 0) {
        m_order.push_back(operation);
    }
    return m_rows[operation];
}

std::string Tally::Table() const {
    std::ostringstream table;
    const auto write = [&table](const std::string& operation, const auto& tried, const auto& hit,
                                const auto& unharmed, const auto& mended, const auto& passedOver,
                                const std::string& failed) {
        table << std::left << std::setw(52) << operation << std::right << std::setw(7) << tried
              << std::setw(7) << hit << std::setw(10) << unharmed << std::setw(8) << mended
              << std::setw(13) << passedOver << "  " << failed << "\n";
    };
    write("operation", "tried", "hit", "unharmed", "mended", "passed over",
          "failed: status x times");
    Row sum;
    for (const std::string& operation : m_order) {
        const Row& row = m_rows.at(operation);
        std::string failed;
        for (const auto& [status, times] : row.failed) {
            failed += (failed.empty() ? "" : ", ") + std::to_string(status) + " x " +
                      std::to_string(times);
        }
        write(operation, row.tried, row.hit, row.unharmed, row.mended, row.passedOver, failed);
        sum.tried += row.tried;
        sum.hit += row.hit;
        sum.unharmed += row.unharmed;
        sum.mended += row.mended;
        sum.passedOver += row.passedOver;
    }
    write("all", sum.tried, sum.hit, sum.unharmed, sum.mended, sum.passedOver, "");
    return table.str();
}

}  // namespace Mirqos::Test
