#include "tools/mirqos/Paging.h"

#include <utility>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {

void WalkPages(const FetchPage& fetch) {
    std::string token;
    do {
        std::string next = fetch(token);
        if (!next.empty() && next == token) {
            throw Failure(ExitCode::OperationFailed,
                          "the service's listing does not go on: a page names itself as the next");
        }
        token = std::move(next);
    } while (!token.empty());
}

}  // namespace Mirqos::Tool
