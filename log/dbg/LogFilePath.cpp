#include "log/dbg/LogFilePath.h"

#include <algorithm>
#include <string>

namespace LOGUTILS {
namespace {

constexpr WideChar kBackslash{'\\'};
constexpr WideChar kSlash{'/'};
constexpr WideChar kDot{'.'};
constexpr std::size_t kNumberDigits = 8;
constexpr std::size_t kMutexNameRoom = 260;  // of a name, its terminator included

bool IsDigit(WideChar c) {
    return c >= WideChar{'0'} && c <= WideChar{'9'};
}

int ValueOf(WideView digits) {
    int nValue = 0;
    for (const WideChar c : digits) {
        nValue = nValue * 10 + static_cast<int>(c - WideChar{'0'});
    }
    return nValue;
}

}  // namespace

WideView FolderOf(WideView path) {
    const std::size_t nEnd = path.rfind(kBackslash);
    return nEnd == WideView::npos ? WideView() : path.substr(0, nEnd);
}

WideView FileNameOf(WideView path) {
    const std::size_t nEnd = path.rfind(kBackslash);
    return nEnd == WideView::npos ? WideView() : path.substr(nEnd + 1);
}

WideString DefaultLogPath(WideView name, WideView libraryName, WideView logRoot) {
    if (name.find(kBackslash) != WideView::npos || name.find(kSlash) != WideView::npos) {
        return WideString(name);
    }
    WideString path(logRoot);
    const WideView file = name.empty() ? libraryName : name;
    path += file;
    const std::size_t nDot = file.rfind(kDot);
    if (nDot == WideView::npos || !EqualIgnoringCase(file.substr(nDot), ".Log"_w)) {
        path += ".Log"_w;
    }
    return path;
}

LogSeries SplitSeries(WideView path) {
    const WideString ending = ".Log"_w;
    if (!EndsWithIgnoringCase(path, ending)) {
        return {WideString(path), 0};
    }
    path.remove_suffix(ending.size());
    if (path.size() > kNumberDigits && path[path.size() - kNumberDigits - 1] == kDot) {
        const WideView digits = path.substr(path.size() - kNumberDigits);
        if (std::all_of(digits.begin(), digits.end(), IsDigit) && ValueOf(digits) > 0) {
            path.remove_suffix(kNumberDigits + 1);
            return {WideString(path), ValueOf(digits)};
        }
    }
    return {WideString(path), 0};
}

std::optional<WideString> SeriesMember(WideView base, int number) {
    std::string digits = std::to_string(number);
    digits.insert(0, kNumberDigits - std::min(kNumberDigits, digits.size()), '0');
    WideString path(base);
    path += WidenAscii("." + digits + ".log");
    if (path.size() >= kPathRoom) {
        return std::nullopt;
    }
    return path;
}

bool IsSameLog(WideView left, WideView right) {
    return EqualIgnoringCase(left, right) ||
           EqualIgnoringCase(SplitSeries(left).base, SplitSeries(right).base);
}

WideString FileMutexName(WideView path) {
    WideString name(path);
    std::replace(name.begin(), name.end(), kBackslash, kSlash);
    name = R"(Global\)"_w + UpperCase(name);
    name.resize(std::min(name.size(), kMutexNameRoom - 1));
    return name;
}

}  // namespace LOGUTILS
