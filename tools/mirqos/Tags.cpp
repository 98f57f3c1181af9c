#include "tools/mirqos/Tags.h"

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

Tag SplitAt(std::string_view text, std::size_t place) {
    return {std::string(text.substr(0, place)),
            place < text.size() ? std::string(text.substr(place + 1)) : std::string()};
}

}  // namespace

Tag ParseTag(std::string_view argument) {
    const std::size_t place = argument.find_first_of("=:");
    if (place == std::string_view::npos || place == 0) {
        throw Failure(ExitCode::Usage, "a tag has to be NAME=VALUE or NAME:VALUE");
    }
    if (!IsUtf8(argument)) {
        throw Failure(ExitCode::Usage, "a tag is not valid UTF-8");
    }
    return SplitAt(argument, place);
}

Tag UnpackTag(std::string_view packed) {
    return SplitAt(packed, packed.find(':'));
}

}  // namespace Mirqos::Tool
