#pragma once

#include <atomic>
#include <string>

#include "tools/mirqos/Trouble.h"

namespace Mirqos::Tool {

/// Tells a failure with one file, after which a run goes on with the others, from one that concerns
/// them all. All members may be called from any thread.
class Patience {
public:
    /// So many refusals of the service one after another are taken for one of everything.
    static constexpr unsigned kMostInARow = 10;

    /// The failure as this file's trouble. Throws it on where it is the user's interrupt, nobody
    /// answers, or the service has refused one file after another.
    Trouble Bear(const std::string& path, const Failure& failure);
    /// The service did for a file what was asked.
    void Renew() { m_inARow = 0; }

private:
    std::atomic<unsigned> m_inARow{0};
};

}  // namespace Mirqos::Tool
