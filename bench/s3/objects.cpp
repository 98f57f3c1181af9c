#include <cstdio>
#include <stdexcept>
#include <utility>
#include <vector>

#include "bench/s3/ForEach.h"
#include "bench/s3/Row.h"

namespace Mirqos::Bench {
namespace {

/// What one thread has.
struct Worker {
    std::unique_ptr<Session> session;
    Bytes object;
};

std::vector<Worker> Workers(const Opener& open, const Order& order, const Bytes& object) {
    std::vector<Worker> workers;
    for (int n = 0; n < order.threads; ++n) {
        workers.push_back({open(0), object});
    }
    return workers;
}

/// The cost of `work` for each object. Before it begins, everybody has the first object, which
/// opens the connections.
template <typename Work>
Cost CostOfObjects(const Order& order, std::vector<Worker>& workers, Work work) {
    const auto workOn = [&](Worker& worker, int index) {
        char key[64];
        std::snprintf(key, sizeof key, "objects-%zu/%06d", order.bytes, index);
        work(worker, key);
    };
    for (Worker& worker : workers) {
        workOn(worker, 0);
    }
    return CostOf([&] { ForEach(workers, order.count, workOn); });
}

}  // namespace

Cost PutObjects(const Opener& open, const Order& order) {
    std::vector<Worker> workers = Workers(open, order, Content(order.bytes));
    return CostOfObjects(order, workers, [](Worker& worker, const char* key) {
        worker.session->Put(key, worker.object);
    });
}

Cost GetObjects(const Opener& open, const Order& order) {
    std::vector<Worker> workers = Workers(open, order, Bytes(order.bytes));
    const Cost cost = CostOfObjects(order, workers, [](Worker& worker, const char* key) {
        worker.session->Get(key, worker.object);
    });
    CheckContent(workers.front().object);
    for (const Worker& worker : workers) {
        if (worker.object != workers.front().object) {
            throw std::runtime_error("two threads received different bytes");
        }
    }
    return cost;
}

}  // namespace Mirqos::Bench
