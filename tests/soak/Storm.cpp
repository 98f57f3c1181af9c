#include "tests/soak/Storm.h"

#include <array>
#include <random>

namespace Mirqos::Soak {
namespace {

using Test::Relay;

constexpr std::uint64_t kPlanned = std::uint64_t{16} << 30;  // bytes each way
// Between two faults lies up to this much, so that what is sent again comes through, a part of 5
// MiB as well. One in eight follows at once, so that now and then that meets a fault, too.
constexpr std::uint64_t kGap = 48 * 1024 * 1024;
constexpr std::uint64_t kSmallGap = 64 * 1024;

using Kinds = std::array<Relay::Harm, 16>;

constexpr Relay::Harm kReset = Relay::Harm::reset;
constexpr Relay::Harm kRefuse = Relay::Harm::refuse;
constexpr Relay::Harm kPause = Relay::Harm::pause;
constexpr Relay::Harm kOutage = Relay::Harm::outage;

constexpr Kinds kToServer = {kReset,  kReset,  kReset,  kReset,  kReset,  kReset, kReset, kReset,
                             kRefuse, kRefuse, kRefuse, kRefuse, kRefuse, kPause, kPause, kOutage};
constexpr Kinds kToClient = {kReset, kReset, kReset, kReset, kReset, kReset, kReset, kReset,
                             kReset, kReset, kReset, kReset, kReset, kReset, kPause, kPause};

void PlanWay(Relay& relay, Relay::Way way, const Kinds& kinds, std::mt19937_64& random) {
    std::uint64_t at = 0;
    while (at < kPlanned) {
        const std::uint64_t most = random() % 8 == 0 ? kSmallGap : kGap;
        at += random() % most;
        relay.Plan(way, at, kinds[random() % kinds.size()]);
    }
}

}  // namespace

void PlanStorm(Relay& relay, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    PlanWay(relay, Relay::Way::toServer, kToServer, random);
    PlanWay(relay, Relay::Way::toClient, kToClient, random);
}

}  // namespace Mirqos::Soak
