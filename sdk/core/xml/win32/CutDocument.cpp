#include "sdk/core/xml/win32/CutDocument.h"

#include <cstddef>

namespace Mirqos::Xml {
namespace {

constexpr auto npos = std::string_view::npos;

/// The place after the tag that begins at `at`; a '>' in a quoted value does not end it.
std::size_t AfterTag(std::string_view document, std::size_t at) {
    for (;;) {
        at = document.find_first_of("\"'>", at);
        if (at == npos || document[at] == '>') {
            return at == npos ? npos : at + 1;
        }
        at = document.find(document[at], at + 1);
        if (at == npos) {
            return npos;
        }
        ++at;
    }
}

std::size_t After(std::string_view document, std::string_view end, std::size_t from) {
    const std::size_t at = document.find(end, from);
    return at == npos ? npos : at + end.size();
}

}  // namespace

bool IsCut(std::string_view document) {
    std::size_t open = 0;
    std::size_t at = document.find('<');
    if (at == npos) {
        return true;
    }
    while (at != npos) {
        const std::string_view rest = document.substr(at);
        const auto begins = [rest](std::string_view with) {
            return rest.substr(0, with.size()) == with;
        };
        std::size_t after = 0;
        if (begins("<!--")) {
            after = After(document, "-->", at + 4);
        } else if (begins("<![CDATA[")) {
            after = After(document, "]]>", at + 9);
        } else if (begins("<?")) {
            after = After(document, "?>", at + 2);
        } else if (begins("<!")) {
            // A document type, at which reading ends in any case.
            return false;
        } else if (begins("</")) {
            after = After(document, ">", at);
            if (open == 0) {
                return false;
            }
            --open;
        } else {
            after = AfterTag(document, at);
            if (after != npos && document[after - 2] != '/') {
                ++open;
            }
        }
        if (after == npos) {
            return true;
        }
        at = document.find('<', after);
    }
    return open > 0;
}

}  // namespace Mirqos::Xml
