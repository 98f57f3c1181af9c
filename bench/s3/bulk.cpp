#include <cstddef>
#include <vector>

#include "bench/s3/Row.h"

namespace Mirqos::Bench {
namespace {

constexpr char kKey[] = "bulk";
constexpr std::size_t kRangesAtOnce = 32;  // so many a host reads before it looks at them

}  // namespace

Cost UploadInParts(const Opener& open, const Order& order) {
    const Bytes part = Content(order.bytes);
    const auto session = open(order.threads);
    return CostOf([&] { session->Upload(kKey, part, order.count); });
}

Cost ReadInRanges(const Opener& open, const Order& order) {
    const auto session = open(order.threads);
    std::vector<Bytes> buffers(kRangesAtOnce, Bytes(order.bytes));
    const Bytes* last = nullptr;
    const Cost cost = CostOf([&] { last = &session->ReadRanges(kKey, buffers, order.count); });
    CheckContent(*last);
    return cost;
}

}  // namespace Mirqos::Bench
