#pragma once

#include <chrono>

namespace Mirqos::Bench {

/// What is measured of a row.
struct Cost {
    double seconds;
    long peakKib;  ///< the most memory that the process had, or the largest of several
};

/// The most memory that this process had so far.
long OwnPeakKib();

/// What `work` costs, in this process.
template <typename Work>
Cost CostOf(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    return {passed.count(), OwnPeakKib()};
}

/// What another program costs, from its start to its end; it is found in the path, and its output
/// is left alone. Throws when it ends with anything but 0.
Cost CostOfProgram(char** arguments);

}  // namespace Mirqos::Bench
