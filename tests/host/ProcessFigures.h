#pragma once

#include <cstdint>
#include <string>

/// What this process holds of the system right now; -1 where it could not be asked.
struct ProcessFigures {
    std::int64_t handles;      ///< open handles or file descriptors
    std::int64_t freeTls;      ///< TLS indexes or keys that can still be had
    std::int64_t memoryBytes;  ///< private memory (Windows) or resident memory
    std::int64_t threads;
};

ProcessFigures MeasureProcess();

inline std::string Describe(const ProcessFigures& figures) {
    return std::to_string(figures.handles) + " handles, " + std::to_string(figures.freeTls) +
           " free TLS indexes, " + std::to_string(figures.memoryBytes / 1024) + " KiB, " +
           std::to_string(figures.threads) + " threads";
}
