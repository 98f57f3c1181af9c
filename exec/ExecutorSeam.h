#pragma once

#include <functional>

namespace Mirqos {

/// What tests may replace inside the executor. Nothing of it is exported from the DLL, so no host
/// can reach it. It is read without a lock: set it while no executor starts or takes tasks.
struct ExecutorSeam {
    /// Called before each thread is created; throws what a refusing system would throw.
    std::function<void()> onThreadCreation;
    /// Called before each task is queued; throws what a lack of memory would throw.
    std::function<void()> onSubmission;
};

ExecutorSeam& TheExecutorSeam();

}  // namespace Mirqos
