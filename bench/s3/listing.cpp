#include <cstdio>
#include <stdexcept>
#include <vector>

#include "bench/s3/ForEach.h"
#include "bench/s3/Row.h"

namespace Mirqos::Bench {
namespace {

constexpr char kPrefix[] = "listed/";

}  // namespace

Cost StoreKeys(const Opener& open, const Order& order) {
    std::vector<std::unique_ptr<Session>> sessions;
    for (int n = 0; n < order.threads; ++n) {
        sessions.push_back(open(0));
    }
    const auto store = [](const std::unique_ptr<Session>& session, int index) {
        char key[64];
        std::snprintf(key, sizeof key, "%s%04d-%03d", kPrefix, index / 1000, index % 1000);
        session->Put(key, Bytes(1));
    };
    return CostOf([&] { ForEach(sessions, order.count, store); });
}

Cost ListKeys(const Opener& open, const Order& order) {
    const auto session = open(0);
    std::size_t listed = 0;
    const Cost cost = CostOf([&] { listed = session->List(kPrefix); });
    if (listed != static_cast<std::size_t>(order.count)) {
        throw std::runtime_error("listed " + std::to_string(listed) + " keys");
    }
    return cost;
}

}  // namespace Mirqos::Bench
