#include "log/LogOutputs.h"

#include <cstdlib>

#include "log/posix/TextFileOutput.h"

namespace Mirqos {

std::unique_ptr<IDBGLogOutput> CreateFileLogOutput() {
    // The library never changes the environment.
    const char* path = std::getenv("MIRQOS_LOG_FILE");  // NOLINT(concurrency-mt-unsafe)
    if (path == nullptr || *path == 0) {
        return nullptr;
    }
    return std::make_unique<TextFileOutput>(path);
}

// The live channel exists on Windows only.
std::unique_ptr<IDBGLogOutput> CreateChannelLogOutput() {
    return nullptr;
}

}  // namespace Mirqos
