#include "store/ExpectedRegion.h"

namespace Mirqos {

std::string ExpectedRegion(std::string_view message) {
    constexpr std::string_view kBeforeWrong = "The authorization header is malformed; the region '";
    constexpr std::string_view kBeforeExpected = " is wrong; expecting '";
    const auto nWrong = message.find(kBeforeWrong);
    if (nWrong == std::string_view::npos) {
        return {};
    }
    const auto nBetween = message.find(kBeforeExpected, nWrong + kBeforeWrong.size());
    if (nBetween == std::string_view::npos) {
        return {};
    }
    const auto nStart = nBetween + kBeforeExpected.size();
    // From one character on: a region has at least one, so a quote right at the start is part of
    // it.
    const auto nEnd = message.find('\'', nStart + 1);
    if (nEnd == std::string_view::npos) {
        return {};
    }
    return std::string(message.substr(nStart, nEnd - nStart));
}

}  // namespace Mirqos
