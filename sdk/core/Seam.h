#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "sdk/core/http/Transport.h"

namespace Mirqos {

/// What tests may replace inside the bundled SDK layer. Nothing of it is exported from the DLL, so
/// no host can reach it. Set it while no client exists and no call runs; it is read without a lock.
struct Seam {
    struct Address {
        std::string host;
        std::uint16_t port = 0;
    };
    /// Makes the transport of each new client; unset: Http::MakeTransport.
    std::function<std::shared_ptr<Http::Transport>(const Http::TransportOptions&)> makeTransport;
    /// Where to connect for a host and port; unset or an empty host: to the host itself.
    std::function<Address(const std::string& host, std::uint16_t port)> resolve;
    /// PEM file that replaces the system's trusted authorities (libcurl only); empty: the system's.
    std::string trustFile;
    /// The clock of request signatures; unset: the system's.
    std::function<std::chrono::system_clock::time_point()> now;
    /// The wait between two attempts; unset: a real one.
    std::function<void(std::chrono::milliseconds)> sleep;
    /// Replace the client configuration's limits; unset: the configuration's.
    std::optional<std::chrono::milliseconds> connectLimit;
    std::optional<std::chrono::milliseconds> stallLimit;
    /// Called by each Aws::InitAPI and Aws::ShutdownAPI.
    std::function<void()> onInitApi;
    std::function<void()> onShutdownApi;
};

Seam& TheSeam();

}  // namespace Mirqos
