#include "tools/mirqos/PackedTexts.h"

#include <cassert>

namespace Mirqos::Tool {

std::string PackTexts(const std::vector<std::string>& texts) {
    std::string packed;
    for (const std::string& text : texts) {
        // it would end the list, or become two
        assert(!text.empty() && text.find('\0') == std::string::npos);
        packed += text;
        packed += '\0';
    }
    packed += '\0';
    return packed;
}

std::vector<std::string> UnpackTexts(const char* packed) {
    std::vector<std::string> texts;
    while (packed != nullptr && *packed != '\0') {
        texts.emplace_back(packed);
        packed += texts.back().size() + 1;
    }
    return texts;
}

}  // namespace Mirqos::Tool
