#include "sdk/core/Seam.h"

namespace Mirqos {

Seam& TheSeam() {
    // Never destroyed: threads of a client may still read it while statics are torn down.
    static Seam& seam = *new Seam;
    return seam;
}

}  // namespace Mirqos
