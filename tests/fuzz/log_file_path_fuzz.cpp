// The rules over the paths of log files: an input is two paths, with a line feed between.
#include "log/dbg/LogFilePath.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/fuzz/Require.h"

namespace {

using namespace LOGUTILS;
using Mirqos::Test::Require;

constexpr int kHighestNumber = 99999999;
constexpr std::size_t kNumberAndEnding = 13;  // ".00000001.log"
constexpr WideChar kBackslash{'\\'};

/// A number that depends on the text and is that of a member.
int NumberFrom(const WideString& text) {
    std::uint32_t number = 0;
    for (const WideChar c : text) {
        number = number * 31 + c;
    }
    return static_cast<int>(number % kHighestNumber) + 1;
}

void CheckMember(const WideString& base, int number) {
    const auto member = SeriesMember(base, number);
    Require(member.has_value() == (base.size() + kNumberAndEnding < kPathRoom),
            "a member is one that fits a path");
    if (member) {
        const LogSeries series = SplitSeries(*member);
        Require(series.base == base && series.number == number,
                "a member tells its base and number");
    }
}

void CheckSeries(const WideString& path) {
    const LogSeries series = SplitSeries(path);
    Require(series.number >= 0 && series.number <= kHighestNumber, "a number has 8 digits");
    Require(path.compare(0, series.base.size(), series.base) == 0, "a path begins with its base");
    const WideString rest = path.substr(series.base.size());
    Require(series.number == 0
                ? rest.empty() || EqualIgnoringCase(rest, ".log"_w)
                : rest.size() == kNumberAndEnding && EqualIgnoringCase(rest.substr(9), ".log"_w),
            "a number and the ending follow the base, or the ending, or nothing");

    if (series.number < kHighestNumber) {
        if (const auto next = SeriesMember(series.base, series.number + 1)) {
            Require(IsSameLog(path, *next), "a successor is the same log");
        }
    }
    CheckMember(path, NumberFrom(path));
    CheckMember(series.base, NumberFrom(path));
}

void CheckPair(const WideString& left, const WideString& right) {
    const bool same = IsSameLog(left, right);
    Require(IsSameLog(right, left) == same, "same is the same both ways");
    Require(IsSameLog(UpperCase(left), right) == same, "letter case does not matter");
    Require(IsSameLog(left, left), "a path is the same as itself");
}

void CheckMutexName(const WideString& path) {
    const WideString name = FileMutexName(path);
    Require(name.size() == std::min<std::size_t>(7 + path.size(), 259), "a name is cut to 259");
    Require(name.compare(0, 7, "Global\\"_w) == 0, "a name is a global one");
    Require(name.find(kBackslash, 7) == WideString::npos, "no other backslash is left");
    WideString other = UpperCase(path);
    std::replace(other.begin(), other.end(), WideChar{'/'}, kBackslash);
    Require(FileMutexName(other) == name, "letter case and slash style do not matter");
}

void CheckDefaultPath(const WideString& name) {
    const WideString root = "C:\\Logs\\"_w;
    const WideString path = DefaultLogPath(name, "x.dll"_w, root);
    if (path != name) {
        Require(path.compare(0, root.size(), root) == 0, "a plain name lies in the root");
        Require(EndsWithIgnoringCase(path, ".log"_w), "and ends in .Log");
    }
    Require(DefaultLogPath(path, "x.dll"_w, root) == path, "a full path stays");
}

void CheckPieces(const WideString& path) {
    WideString whole(FolderOf(path));
    if (path.find(kBackslash) != WideString::npos) {
        whole += kBackslash;
        whole += FileNameOf(path);
        Require(whole == path, "folder and file name make the path");
    } else {
        Require(whole.empty() && FileNameOf(path).empty(), "without backslash neither");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t* const end = data + size;
    const std::uint8_t* const leftEnd = std::find(data, end, std::uint8_t{'\n'});
    const WideString left(data, leftEnd);
    const WideString right(leftEnd == end ? end : leftEnd + 1, end);
    for (const WideString& path : {left, right}) {
        CheckSeries(path);
        CheckMutexName(path);
        CheckDefaultPath(path);
        CheckPieces(path);
    }
    CheckPair(left, right);
    return 0;
}
