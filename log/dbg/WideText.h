#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

/// Texts of 16-bit units, as Windows and the shared-memory formats hold them. Where wchar_t is
/// wider the unit is char16_t, so that the rules over such texts and formats also build elsewhere.
namespace LOGUTILS {

using WideChar = std::conditional_t<sizeof(wchar_t) == 2, wchar_t, char16_t>;
using WideString = std::basic_string<WideChar>;
using WideView = std::basic_string_view<WideChar>;

/// ASCII text as wide text: `".Log"_w`.
WideString operator""_w(const char* pszText, std::size_t nLength);
/// The same for a text that is known to be ASCII but not while compiling.
WideString WidenAscii(std::string_view text);
WideString Decimal(long long nValue);

/// Each character in upper case, one by one, as the C runtime has it. Names of shared objects are
/// made with this, so every program that meets on one has to use the same rule.
WideString UpperCase(WideView text);
bool EqualIgnoringCase(WideView left, WideView right);
bool BeginsWithIgnoringCase(WideView text, WideView beginning);
bool EndsWithIgnoringCase(WideView text, WideView ending);

/// The text in a room of fixed size: up to its first NUL, or all of the room when there is none, as
/// in a block that somebody damaged.
template <std::size_t kSize>
WideView TextIn(const WideChar (&room)[kSize]) {
    const WideView all(room, kSize);
    return all.substr(0, all.find(WideChar{}));
}

/// Puts `text` into a room of fixed size, cut to what fits before the terminator; the rest of the
/// room is cleared.
template <std::size_t kSize>
void PutText(WideChar (&room)[kSize], WideView text) {
    const std::size_t nLength = text.copy(room, kSize - 1);
    std::char_traits<WideChar>::assign(room + nLength, kSize - nLength, WideChar{});
}

}  // namespace LOGUTILS
