#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "sdk/core/Seam.h"
#include "tests/faults/Mishap.h"
#include "tests/faults/ModelService.h"
#include "tests/support/RawServer.h"

namespace Mirqos::Test {

/// A service on a loopback port that works, until it is broken, and counts how often that struck.
/// Any thread may call any member.
class FaultyService {
public:
    /// `keepsConnections` false: each answer is the last of its connection.
    FaultyService(ModelService model, bool keepsConnections);

    /// From now on, `fault` strikes when `request` further requests have had their good answers:
    /// once, or as long as it is not mended.
    void Break(const Mishap& fault, int request, bool once);
    void Mend();
    /// How often the fault has struck.
    int Hits() const;

    /// Where the next attempt of a client has to connect. An attempt that is to be refused counts
    /// as struck when it asks.
    Seam::Address NextAddress();

    /// Calls `look` with what the service keeps, while nobody else touches it.
    template <typename Look>
    auto Inspect(Look look) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return look(m_model);
    }

private:
    using Connection = RawServer::Connection;

    struct Reply {
        std::string bytes;
        std::size_t step = 0;      ///< bytes sent at a time; 0: all at once
        std::optional<Harm> harm;  ///< done after them
        bool goesOn = true;
    };

    /// Counts a fault that is due at this stage and tells the harm it does.
    std::optional<Harm> Strike(Stage stage);
    bool IsDue(Stage stage) const;
    void Count();
    void Serve(Connection& connection);
    /// False when the connection is to end.
    bool ServeRequest(Connection& connection);
    bool ServeAnswer(Connection& connection, const RecordedRequest& request);
    Reply Decide(const RecordedRequest& request);

    const bool m_keepsConnections;
    mutable std::mutex m_mutex;
    ModelService m_model;
    const Mishap* m_fault = nullptr;
    int m_at = 0;
    int m_left = 0;  ///< times it still strikes; below 0: always
    int m_good = 0;  ///< good answers since it was broken
    int m_hits = 0;
    std::uint16_t m_closedPort;
    RawServer m_server;
};

}  // namespace Mirqos::Test
