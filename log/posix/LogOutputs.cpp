#include "log/LogOutputs.h"

#include <cstdlib>

#include "log/posix/TextFileOutput.h"

namespace Mirqos {

std::unique_ptr<IDBGLogOutput> CreateFileLogOutput() {
    const char* path = std::getenv("MIRQOS_LOG_FILE");
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
