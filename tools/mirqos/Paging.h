#pragma once

#include <functional>
#include <string>

namespace Mirqos::Tool {

/// Fetches the page that begins at `token` and returns the next one's; empty after the last.
using FetchPage = std::function<std::string(const std::string& token)>;

/// Walks a listing from its first page (the empty token) to its last. Throws Failure
/// (OperationFailed) where a page names itself as the next, which would go on for ever.
void WalkPages(const FetchPage& fetch);

}  // namespace Mirqos::Tool
