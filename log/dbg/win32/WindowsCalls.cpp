#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {

WindowsCalls& Windows() {
    static WindowsCalls calls;
    return calls;
}

}  // namespace LOGUTILS
