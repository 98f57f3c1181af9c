#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Mirqos::Tool {

/// Shows on the error stream how far a command is: a bar that redraws itself on a terminal, a plain
/// line every few seconds elsewhere. Silent when built so. A thread of its own draws, so the line
/// lives on while a request blocks. All members may be called from any thread.
class Progress {
public:
    explicit Progress(bool shown);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    /// Takes the bar away again.
    ~Progress();

    /// Begins a phase that counts its bytes with Add. `total` where it is known.
    void Count(const std::string& phase, const std::string& name,
               std::optional<std::uint64_t> total);
    /// Begins a phase that gives no figure until it ends, such as one request. `total` as above.
    void Wait(const std::string& phase, const std::string& name,
              std::optional<std::uint64_t> total);
    void Add(std::uint64_t bytes);

private:
    struct State;
    std::unique_ptr<State> m_state;  ///< null when silent
};

}  // namespace Mirqos::Tool
