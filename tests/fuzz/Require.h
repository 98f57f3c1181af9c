#pragma once

#include <cstdio>
#include <cstdlib>

namespace Mirqos::Test {

/// Ends the process when a property does not hold: a crash is what fuzzers look for.
inline void Require(bool holds, const char* property) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", property);
        std::abort();
    }
}

}  // namespace Mirqos::Test
