#include "log/LogOutputs.h"

namespace Mirqos {

// Log files and the live channel are the logging library's; this build has none.
std::unique_ptr<IDBGLogOutput> CreateFileLogOutput() {
    return nullptr;
}

std::unique_ptr<IDBGLogOutput> CreateChannelLogOutput() {
    return nullptr;
}

}  // namespace Mirqos
