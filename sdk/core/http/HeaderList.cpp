#include <algorithm>

#include "sdk/core/http/Ascii.h"
#include "sdk/core/http/Transport.h"

namespace Mirqos::Http {

const std::string* FindHeader(const HeaderList& headers, const std::string& name) {
    const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& header) {
        return EqualNoCase(header.first, name);
    });
    return found == headers.end() ? nullptr : &found->second;
}

}  // namespace Mirqos::Http
