#pragma once

#include <cstdint>

#include "tests/support/Relay.h"

namespace Mirqos::Soak {

/// Plans random faults for the next gigabytes of a relay's traffic: resets above all, refusals,
/// pauses and short outages. Every request can be made up for by the library's retries, but a
/// refused one. None lets a request whose caller has gone on still change an object: what is lost
/// is either a request that the server never had whole, or the answer to one that it has done.
void PlanStorm(Test::Relay& relay, std::uint64_t seed);

}  // namespace Mirqos::Soak
