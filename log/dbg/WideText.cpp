#include "log/dbg/WideText.h"

#include <algorithm>
#include <cwctype>

namespace LOGUTILS {
namespace {

WideChar Upper(WideChar c) {
    return static_cast<WideChar>(std::towupper(static_cast<std::wint_t>(c)));
}

}  // namespace

WideString WidenAscii(std::string_view text) {
    return {text.begin(), text.end()};
}

WideString operator""_w(const char* pszText, std::size_t nLength) {
    return WidenAscii({pszText, nLength});
}

WideString Decimal(long long nValue) {
    return WidenAscii(std::to_string(nValue));
}

WideString UpperCase(WideView text) {
    WideString upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), Upper);
    return upper;
}

bool EqualIgnoringCase(WideView left, WideView right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](WideChar l, WideChar r) { return l == r || Upper(l) == Upper(r); });
}

bool BeginsWithIgnoringCase(WideView text, WideView beginning) {
    return text.size() >= beginning.size() &&
           EqualIgnoringCase(text.substr(0, beginning.size()), beginning);
}

bool EndsWithIgnoringCase(WideView text, WideView ending) {
    return text.size() >= ending.size() &&
           EqualIgnoringCase(text.substr(text.size() - ending.size()), ending);
}

}  // namespace LOGUTILS
