#include "tools/mirqos/Patience.h"

#include "tools/mirqos/Statuses.h"

namespace Mirqos::Tool {

Trouble Patience::Bear(const std::string& path, const Failure& failure) {
    if (failure.Code() != ExitCode::LocalFile) {
        const bool refused = failure.Code() == ExitCode::OperationFailed && failure.Status() != 0 &&
                             failure.Status() != kStatusNoAnswer;
        if (!refused || ++m_inARow >= kMostInARow) {
            throw failure;
        }
    }
    return {path, failure.what(), failure.Code()};
}

}  // namespace Mirqos::Tool
