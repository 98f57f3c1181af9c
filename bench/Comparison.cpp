#include "bench/Comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <vector>

namespace Mirqos::Bench {
namespace {

constexpr int kRounds = 31;

struct Pair {
    double m_floor;
    double m_ours;
};

template <typename Value>
double MedianOf(const std::vector<Pair>& pairs, Value value) {
    std::vector<double> values;
    std::transform(pairs.begin(), pairs.end(), std::back_inserter(values), value);
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

double Now() {
    const std::chrono::duration<double, std::micro> now =
        std::chrono::steady_clock::now().time_since_epoch();
    return now.count();
}

void PrintHeading(const char* pszTitle, const char* pszOurs) {
    std::printf("%s, medians of %d runs by turns\n", pszTitle, kRounds);
    std::printf("%-28s %11s %11s %7s\n", "", "floor", pszOurs, "ratio");
}

void PrintRow(const char* pszName, const std::function<double(bool bFloor)>& measure) {
    std::vector<Pair> pairs(kRounds);
    bool bFloorFirst = false;
    for (Pair& pair : pairs) {
        bFloorFirst = !bFloorFirst;
        for (const bool bFloor : {bFloorFirst, !bFloorFirst}) {
            (bFloor ? pair.m_floor : pair.m_ours) = measure(bFloor);
        }
    }
    std::printf("%-28s %8.1f us %8.1f us %7.2f\n", pszName,
                MedianOf(pairs, [](const Pair& pair) { return pair.m_floor; }),
                MedianOf(pairs, [](const Pair& pair) { return pair.m_ours; }),
                MedianOf(pairs, [](const Pair& pair) { return pair.m_ours / pair.m_floor; }));
    std::fflush(stdout);
}

}  // namespace Mirqos::Bench
