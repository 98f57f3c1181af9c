#include "sdk/core/signer/UtcTime.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace Mirqos {
namespace {

constexpr int kFirstYear = 1970;
constexpr int kLastYear = 2200;  // a time point in nanoseconds ends in 2262
constexpr std::int64_t kDaySeconds = 24 * 60 * 60;
constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool IsLeap(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysOfYear(int year) {
    return IsLeap(year) ? 366 : 365;
}

/// `month` counts from 0.
int DaysOfMonth(int year, std::size_t month) {
    constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 1 && IsLeap(year) ? 29 : days[month];
}

/// The number that the `count` digits at `from` write; -1 where one of them is not a digit.
int Digits(std::string_view text, std::size_t from, std::size_t count) {
    int number = 0;
    for (const char c : text.substr(from, count)) {
        if (c < '0' || c > '9') {
            return -1;
        }
        number = number * 10 + (c - '0');
    }
    return number;
}

/// Writes `number` over the `count` characters at `from`. Every request has a few of these, and
/// printf takes longer over them than over all else that is signed.
void PutDigits(std::string& text, std::size_t from, std::size_t count, int number) {
    for (std::size_t at = from + count; at-- > from; number /= 10) {
        text[at] = static_cast<char>('0' + number % 10);
    }
}

}  // namespace

std::string FormatAmzDate(UtcTime time) {
    const auto seconds = static_cast<std::int64_t>(
        std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count());
    auto days = static_cast<int>(seconds / kDaySeconds);
    const auto rest = static_cast<int>(seconds % kDaySeconds);
    int year = kFirstYear;
    for (; days >= DaysOfYear(year); ++year) {
        days -= DaysOfYear(year);
    }
    std::size_t month = 0;
    for (; days >= DaysOfMonth(year, month); ++month) {
        days -= DaysOfMonth(year, month);
    }
    std::string text = "00000000T000000Z";
    PutDigits(text, 0, 4, year);
    PutDigits(text, 4, 2, static_cast<int>(month) + 1);
    PutDigits(text, 6, 2, days + 1);
    PutDigits(text, 9, 2, rest / 3600);
    PutDigits(text, 11, 2, rest / 60 % 60);
    PutDigits(text, 13, 2, rest % 60);
    return text;
}

std::optional<UtcTime> ParseHttpDate(std::string_view text) {
    // Letters and blanks stand at fixed places in this form.
    constexpr std::string_view shape = "aaa, 00 aaa 0000 00:00:00 GMT";
    if (text.size() != shape.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const bool free = shape[i] == 'a' || shape[i] == '0';
        if (!free && text[i] != shape[i]) {
            return std::nullopt;
        }
    }
    const auto name = std::find(kMonths.begin(), kMonths.end(), text.substr(8, 3));
    const int day = Digits(text, 5, 2);
    const int year = Digits(text, 12, 4);
    const int hour = Digits(text, 17, 2);
    const int minute = Digits(text, 20, 2);
    const int second = Digits(text, 23, 2);
    if (name == kMonths.end() || year < kFirstYear || year > kLastYear || hour < 0 || hour > 23 ||
        minute < 0 || minute > 59 || second < 0 || second > 60) {
        return std::nullopt;
    }
    const auto month = static_cast<std::size_t>(name - kMonths.begin());
    if (day < 1 || day > DaysOfMonth(year, month)) {
        return std::nullopt;
    }
    std::int64_t days = day - 1;
    for (int y = kFirstYear; y < year; ++y) {
        days += DaysOfYear(y);
    }
    for (std::size_t m = 0; m < month; ++m) {
        days += DaysOfMonth(year, m);
    }
    return UtcTime(std::chrono::seconds(days * kDaySeconds + hour * 3600 + minute * 60 + second));
}

}  // namespace Mirqos
