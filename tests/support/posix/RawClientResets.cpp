#include "tests/support/RawClient.h"

namespace Mirqos::Test {

bool RawClient::TellsResetsApart() {
    return true;
}

}  // namespace Mirqos::Test
