#include "tools/mirqos-logview/Failure.h"

#include <windows.h>

namespace Mirqos::LogView {

void Require(bool done, const char* what) {
    if (!done) {
        const DWORD error = GetLastError();
        throw Failure(ExitCode::SystemRefused,
                      std::string("cannot create ") + what + ": error " + std::to_string(error));
    }
}

}  // namespace Mirqos::LogView
