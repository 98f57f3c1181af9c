#pragma once

#include <cstddef>
#include <functional>

namespace Mirqos::Tool {

/// Does the piece of work with this number.
using Worker = std::function<void(std::size_t index)>;

/// Does the pieces 0 to `count` - 1, each once, with up to `threads` threads; `makeWorker` is
/// called by each of them. Returns when no thread works any more. What either throws first comes
/// out of here, and no piece is begun after it.
void DoAll(std::size_t count, unsigned threads, const std::function<Worker()>& makeWorker);

}  // namespace Mirqos::Tool
