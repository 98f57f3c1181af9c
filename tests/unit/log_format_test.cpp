#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <string>

#include "platform/format.h"

namespace {

using Mirqos::FormatBounded;

constexpr std::size_t kRoom = 256;

// What one narrow and one wide formatting of the same arguments give.
template <typename... Arguments>
std::string Narrow(const char* format, Arguments... arguments) {
    char text[kRoom];
    const int result = FormatBounded(text, kRoom, format, arguments...);
    EXPECT_EQ(result, static_cast<int>(std::string(text).size()));
    return text;
}

template <typename... Arguments>
std::wstring Wide(const wchar_t* format, Arguments... arguments) {
    wchar_t text[kRoom];
    const int result = FormatBounded(text, kRoom, format, arguments...);
    EXPECT_EQ(result, static_cast<int>(std::wstring(text).size()));
    return text;
}

TEST(Format, NumbersPrintAlikeInBothKinds) {
    EXPECT_EQ(Narrow("%d|%5d|%-5d|%05d|%+d", -7, 42, 42, 42, 42), "-7|   42|42   |00042|+42");
    EXPECT_EQ(Wide(L"%d|%5d|%-5d|%05d|%+d", -7, 42, 42, 42, 42), L"-7|   42|42   |00042|+42");
    EXPECT_EQ(Narrow("%u %x %X %o %08x", 4294967295u, 0xbeefu, 0xbeefu, 8u, 0x1fu),
              "4294967295 beef BEEF 10 0000001f");
    EXPECT_EQ(Wide(L"%u %x %X %o %08x", 4294967295u, 0xbeefu, 0xbeefu, 8u, 0x1fu),
              L"4294967295 beef BEEF 10 0000001f");
    EXPECT_EQ(Narrow("%.3d|%*d|%-*d|%.*d", 5, 4, 5, 4, 5, 2, 5), "005|   5|5   |05");
    EXPECT_EQ(Wide(L"%.3d|%*d|%-*d|%.*d", 5, 4, 5, 4, 5, 2, 5), L"005|   5|5   |05");
    EXPECT_EQ(Narrow("%*d|", -4, 5), "5   |");
    EXPECT_EQ(Wide(L"%*d|", -4, 5), L"5   |");
}

TEST(Format, NumbersOf64BitsKeepAllTheirDigits) {
    EXPECT_EQ(Narrow("%lld %llu %llx", LLONG_MIN, ULLONG_MAX, ULLONG_MAX),
              "-9223372036854775808 18446744073709551615 ffffffffffffffff");
    EXPECT_EQ(Wide(L"%lld %llu %llx", LLONG_MIN, ULLONG_MAX, ULLONG_MAX),
              L"-9223372036854775808 18446744073709551615 ffffffffffffffff");
    EXPECT_EQ(Narrow("%lu %05ld", 4294967295ul, 12l), "4294967295 00012");
    EXPECT_EQ(Wide(L"%lu %05ld", 4294967295ul, 12l), L"4294967295 00012");
}

TEST(Format, ShortNumbersAndFractions) {
    EXPECT_EQ(Narrow("%hd %hu %.2f", 65537, 65537, 2.5), "1 1 2.50");
    EXPECT_EQ(Wide(L"%hd %hu %.2f", 65537, 65537, 2.5), L"1 1 2.50");
}

TEST(Format, TextsAreReadInTheFormatsOwnKind) {
    EXPECT_EQ(Narrow("%s|%5s|%-5s|%.2s|%c", "abc", "abc", "abc", "abc", 'x'),
              "abc|  abc|abc  |ab|x");
    EXPECT_EQ(Wide(L"%s|%5s|%-5s|%.2s|%c", L"abc", L"abc", L"abc", L"abc", L'x'),
              L"abc|  abc|abc  |ab|x");
    EXPECT_EQ(Wide(L"%s", L"\x20ac\x00e9"), L"\x20ac\x00e9");
    EXPECT_EQ(Narrow("%s", "\xe2\x82\xac"), "\xe2\x82\xac");
}

TEST(Format, TheOtherKindOfTextIsReadWhenAskedFor) {
    EXPECT_EQ(Wide(L"%hs|%ls", "narrow", L"wide"), L"narrow|wide");
    EXPECT_EQ(Narrow("%ls", L"wide"), "wide");
}

TEST(Format, ANullTextPrintsNullAlsoWhereItIsCut) {
    const char* volatile narrow = nullptr;
    const wchar_t* volatile wide = nullptr;
    const char* narrowNull = narrow;
    const wchar_t* wideNull = wide;
    EXPECT_EQ(Narrow("[%s]", narrowNull), "[(null)]");
    EXPECT_EQ(Narrow("[%.3s]", narrowNull), "[(nu]");
    EXPECT_EQ(Wide(L"[%s]", wideNull), L"[(null)]");
    EXPECT_EQ(Wide(L"[%hs]", narrowNull), L"[(null)]");
}

TEST(Format, PercentSignsAndPlainText) {
    EXPECT_EQ(Narrow("100%% %s", "sure"), "100% sure");
    EXPECT_EQ(Wide(L"100%% %s", L"sure"), L"100% sure");
    EXPECT_EQ(Narrow("%s", ""), "");
    EXPECT_EQ(Wide(L"%s", L""), L"");
}

template <typename Char>
void ExpectCutAtTheRoom(const Char* format, const Char* nine) {
    for (const std::size_t room : {std::size_t{1}, std::size_t{2}, std::size_t{9}}) {
        Char text[16];
        std::fill(std::begin(text), std::end(text), Char('#'));
        EXPECT_EQ(FormatBounded(text, room, format, nine), -1) << room;
        EXPECT_EQ(text, std::basic_string<Char>(nine).substr(0, room - 1));
        EXPECT_EQ(text[room], Char('#')) << "nothing is written behind the room";
    }
    Char text[16];
    EXPECT_EQ(FormatBounded(text, 10, format, nine), 9);
    EXPECT_EQ(text, std::basic_string<Char>(nine));
}

TEST(Format, CutTextIsTerminatedAndReportsMinusOne) {
    ExpectCutAtTheRoom("%s", "123456789");
    ExpectCutAtTheRoom(L"%s", L"123456789");
}

TEST(Format, APaddingBeyondTheRoomIsCutToo) {
    char narrow[8];
    EXPECT_EQ(FormatBounded(narrow, sizeof(narrow), "%300d", 5), -1);
    EXPECT_STREQ(narrow, "       ");
    wchar_t wide[8];
    EXPECT_EQ(FormatBounded(wide, 8, L"%-300d", 5), -1);
    EXPECT_STREQ(wide, L"5      ");
}

}  // namespace
