#include "sdk/core/client/Answer.h"

#include <algorithm>

#include "sdk/core/http/Ascii.h"

namespace Mirqos::Client {

long long Answer::ContentLength() const {
    constexpr std::size_t kMaxDigits = 18;  // what a long long surely holds
    const std::string* const value = Http::FindHeader(head.headers, "Content-Length");
    if (value == nullptr || value->empty() || value->size() > kMaxDigits ||
        !std::all_of(value->begin(), value->end(), Http::IsDigit)) {
        return static_cast<long long>(bodyBytes);
    }
    return std::stoll(*value);
}

Aws::String Answer::Header(const std::string& name) const {
    const std::string* const value = Http::FindHeader(head.headers, name);
    return value != nullptr ? ToAws(*value) : Aws::String();
}

}  // namespace Mirqos::Client
