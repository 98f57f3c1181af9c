#include "tests/support/RawClient.h"

namespace Mirqos::Test {

// Wine reports a reset that comes while a read is pending as an orderly end, about one time in
// five.
bool RawClient::TellsResetsApart() {
    return false;
}

}  // namespace Mirqos::Test
