// Loads, starts, uses, stops and frees the library again and again in one process and checks that
// nothing is lost on the way. Usage: host_cycles LIBRARY CYCLES MEMORY_SLACK_KIB

#include <mirqos/mirqos.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Check.h"
#include "LoadedLibrary.h"
#include "ProcessFigures.h"

namespace {

// The first cycles fill caches of the runtime and of the system that stay.
constexpr int kWarmUpCycles = 200;
// A handle lost in each hundredth of 5,000 cycles goes beyond it.
constexpr std::int64_t kHandleSlack = 16;

/// Returns the module's handle, or null when something failed.
void* RunCycle(Checks& checks, const char* path) {
    const LoadedLibrary library(path);
    if (!checks.Expect(library.Handle() != nullptr, std::string("load ") + path)) {
        return nullptr;
    }
    const LibraryFunctions functions(library);
    if (!checks.Expect(functions.Complete(), "the four functions are there by name")) {
        return nullptr;
    }
    functions.init(nullptr);
    MIRQOSInterface* const store = functions.create(nullptr);
    ZeroRecord<CloudStoreConfigInfo> config;
    config->m_pszRegion = "nowhere";
    config->m_pszBucket = "nothing";
    config->m_pszEndPoint = "127.0.0.1:1";
    config->m_nBufferSize = 4096;
    config->m_nThreadCount = 2;
    checks.ExpectEqual(store->Init(config.Get()), 0, "Init");
    functions.release(store);
    functions.unInit();
    return library.Handle();
}

}  // namespace

int main(int argc, char** argv) {
    const int cycles = argc == 4 ? std::atoi(argv[2]) : 0;
    if (cycles <= kWarmUpCycles) {
        std::printf(
            "usage: host_cycles LIBRARY CYCLES MEMORY_SLACK_KIB, with more than %d cycles\n",
            kWarmUpCycles);
        return 2;
    }
    // 1 MiB over 5,000 cycles finds 220 lost bytes in each.
    const std::int64_t memorySlack = std::atoll(argv[3]) * 1024;
    Checks checks;
    // The library stays in the process once it is loaded, so each load finds the same module: a
    // client that a second Init of a store left behind goes on running code of the library, and
    // the runtime would lose a TLS index with each true load.
    void* const module = RunCycle(checks, argv[1]);
    ProcessFigures warm = {};
    checks.Expect(LoadedLibrary::IsInProcess(argv[1]), "the freed library is still loaded");
    for (int cycle = 1; cycle < cycles && module != nullptr; ++cycle) {
        if (cycle == kWarmUpCycles) {
            warm = MeasureProcess();
            std::printf("warm: %s\n", Describe(warm).c_str());
        }
        if (!checks.Expect(RunCycle(checks, argv[1]) == module, "the same module each time")) {
            break;
        }
    }
    const ProcessFigures end = MeasureProcess();
    std::printf("end: %s\n", Describe(end).c_str());
    checks.Expect(warm.handles > 0 && warm.freeTls > 0 && warm.memoryBytes > 0 && warm.threads > 0,
                  "every figure is known");
    checks.Expect(end.handles <= warm.handles + kHandleSlack, "handles are flat");
    checks.ExpectEqual(end.freeTls, warm.freeTls, "free TLS indexes");
    checks.Expect(end.memoryBytes <= warm.memoryBytes + memorySlack, "memory is flat");
    checks.ExpectEqual(end.threads, warm.threads, "threads");
    return checks.ExitCode("host_cycles");
}
