#include <aws/core/utils/StringUtils.h>

#include <string_view>

namespace Aws::Utils {

void StringUtils::Replace(Aws::String& s, const char* search, const char* replace) {
    if (search == nullptr || *search == '\0') {
        return;
    }
    const std::string_view from(search);
    const std::string_view to(replace != nullptr ? replace : "");
    std::size_t at = s.find(from.data(), 0, from.size());
    while (at != Aws::String::npos) {
        s.replace(at, from.size(), to.data(), to.size());
        at = s.find(from.data(), at + to.size(), from.size());
    }
}

}  // namespace Aws::Utils
