#include "log/dbg/ProductVersionText.h"

#include <cstdint>

namespace LOGUTILS {
namespace {

constexpr std::uint32_t kMostNumber = 0xFFFF;

// Takes the number that `text` begins with off it.
std::optional<std::uint32_t> TakeNumber(WideView& text) {
    std::optional<std::uint32_t> number;
    while (!text.empty() && text.front() >= WideChar{'0'} && text.front() <= WideChar{'9'}) {
        number = number.value_or(0) * 10 + static_cast<std::uint32_t>(text.front() - WideChar{'0'});
        if (*number > kMostNumber) {
            return std::nullopt;
        }
        text.remove_prefix(1);
    }
    return number;
}

}  // namespace

std::optional<ProductVersion> ParseProductVersion(WideView text) {
    ProductVersion version;
    const std::optional<std::uint32_t> major = TakeNumber(text);
    if (!major) {
        return std::nullopt;
    }
    version.m_dwMajor = *major;
    if (text.empty()) {
        return version;
    }
    if (text.front() != WideChar{'.'}) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    const std::optional<std::uint32_t> minor = TakeNumber(text);
    if (!minor || (!text.empty() && text.front() != WideChar{'.'})) {
        return std::nullopt;
    }
    version.m_dwMinor = *minor;
    return version;
}

}  // namespace LOGUTILS
