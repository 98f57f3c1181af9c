// What it costs to hand a task over to the executor, from its submission to its end, beside the
// floor (ExecutorFloor). The tasks do nothing; one thread submits them, as a host does that uploads
// parts.

#include <cstdio>
#include <exception>

#include "bench/Comparison.h"
#include "bench/ExecutorFloor.h"
#include "exec/AwsS3BackupExecutor.h"

namespace {

using Mirqos::Bench::ExecutorFloor;
using Mirqos::Bench::Now;

constexpr int kTasks = 5000;

/// In microseconds for each of `kTasks`, until the last has ended.
template <typename Executor>
double CostOf(Executor& executor) {
    std::mutex mutex;
    std::condition_variable ended;
    int left = kTasks;
    const double begin = Now();
    for (int n = 0; n < kTasks; ++n) {
        executor.Submit([&] {
            const std::lock_guard<std::mutex> lock(mutex);
            if (--left == 0) {
                ended.notify_one();
            }
        });
    }
    std::unique_lock<std::mutex> lock(mutex);
    ended.wait(lock, [&left] { return left == 0; });
    return (Now() - begin) / kTasks;
}

double Measure(bool bFloor, int nThreads) {
    if (bFloor) {
        ExecutorFloor floor(static_cast<std::size_t>(nThreads));
        return CostOf(floor);
    }
    AwsS3BackupExecutor executor;
    if (executor.Start(nThreads) != 0) {
        throw std::bad_alloc();
    }
    return CostOf(executor);
}

}  // namespace

int main() try {
    Mirqos::Bench::PrintHeading("cost of a task's hand-over", "executor");
    Mirqos::Bench::PrintRow("1 thread", [](bool bFloor) { return Measure(bFloor, 1); });
    Mirqos::Bench::PrintRow("4 threads", [](bool bFloor) { return Measure(bFloor, 4); });
    Mirqos::Bench::PrintRow("8 threads", [](bool bFloor) { return Measure(bFloor, 8); });
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
