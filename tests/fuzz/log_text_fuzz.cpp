// What stands in log files and in the rooms of shared memory: how a file begins, and texts as
// bytes.
#include "log/dbg/LogText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/fuzz/Require.h"

namespace {

using LOGUTILS::WideChar;
using LOGUTILS::WideString;
using LOGUTILS::WideView;
using Mirqos::Test::Require;

WideString TextFrom(const std::uint8_t* data, std::size_t size) {
    WideString text;
    for (std::size_t n = 0; n + 1 < size; n += 2) {
        text += static_cast<WideChar>(data[n] | data[n + 1] << 8);
    }
    return text;
}

void CheckBeginning(const std::uint8_t* data) {
    Require(LOGUTILS::IsUnicodeFile({static_cast<char>(data[0]), static_cast<char>(data[1])}) ==
                (data[0] == 0xFF && data[1] == 0xFE),
            "a file is Unicode by its first two bytes");
}

void CheckBytes(const std::uint8_t* data, std::size_t size, const WideString& text) {
    const std::string bytes = LOGUTILS::Utf16Bytes(text);
    Require(bytes.size() == size / 2 * 2, "a unit is two bytes");
    Require(std::equal(bytes.begin(), bytes.end(), data,
                       [](char written, std::uint8_t read) {
                           return static_cast<std::uint8_t>(written) == read;
                       }),
            "what was read is written again");
}

void CheckRoom(const WideString& text) {
    struct {
        WideChar room[64];
        WideChar behind;
    } block = {{}, WideChar{'#'}};
    LOGUTILS::PutText(block.room, text);
    const WideView kept = WideView(text).substr(0, 63);
    Require(LOGUTILS::TextIn(block.room) == kept.substr(0, kept.find(WideChar{})),
            "a room gives back what fits it, up to a NUL");
    Require(block.room[63] == WideChar{} && block.behind == WideChar{'#'}, "a room ends in NUL");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size >= 2) {
        CheckBeginning(data);
    }
    const WideString text = TextFrom(data, size);
    CheckBytes(data, size, text);
    CheckRoom(text);
    return 0;
}
