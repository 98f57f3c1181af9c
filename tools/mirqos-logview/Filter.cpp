#include "tools/mirqos-logview/Filter.h"

namespace Mirqos::LogView {

namespace {

bool IsWanted(const std::optional<std::uint32_t>& wanted, std::uint32_t actual) {
    return !wanted || *wanted == actual;
}

}  // namespace

bool IsShown(const Filter& filter, const NSDBG::CLogMessage& message) {
    return (!filter.level || message.GetLevel() <= *filter.level) &&
           IsWanted(filter.processId, message.GetProcessId()) &&
           IsWanted(filter.threadId, message.GetThreadId()) &&
           LOGUTILS::WideView(message.GetText()).find(filter.text) != LOGUTILS::WideView::npos;
}

}  // namespace Mirqos::LogView
