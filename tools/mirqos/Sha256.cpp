#include "tools/mirqos/Sha256.h"

namespace Mirqos::Tool {

std::string Sha256Of(std::string_view text) {
    Sha256 digest;
    digest.Update(text.data(), text.size());
    return digest.Finish();
}

}  // namespace Mirqos::Tool
