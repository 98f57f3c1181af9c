#include "exec/ExecutorSeam.h"

namespace Mirqos {

ExecutorSeam& TheExecutorSeam() {
    static ExecutorSeam seam;
    return seam;
}

}  // namespace Mirqos
