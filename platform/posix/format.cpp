#include "platform/format.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cwchar>
#include <string_view>
#include <type_traits>

// The C library's wide formatting reads narrow text for %s, depends on the locale and leaves
// undefined text when it cuts. So formats are walked here; only numbers go to the C library.
namespace Mirqos {
namespace {

// Longest padding or precision of one conversion; larger ones count as this.
constexpr int kMaxWidth = 1024;
// The longest number: a double's 309 digits, sign and point, with kMaxWidth decimals.
constexpr std::size_t kMaxNumber = kMaxWidth + 512;

// Counts everything written, keeps what fits.
template <typename Char>
class BoundedText {
public:
    BoundedText(Char* text, std::size_t size) : m_text(text), m_room(size - 1) {}

    void Put(Char character) {
        if (m_length < m_room) {
            m_text[m_length] = character;
        }
        ++m_length;
    }

    int Finish() {
        m_text[std::min(m_length, m_room)] = Char{};
        return m_length > m_room ? -1 : static_cast<int>(m_length);
    }

private:
    Char* m_text;
    std::size_t m_room;
    std::size_t m_length = 0;
};

enum class Length { none, half, big, bigger };

struct Conversion {
    std::string_view Flags() const { return {flags.data(), flagCount}; }
    bool LeftAligned() const { return Flags().find('-') != std::string_view::npos; }

    std::array<char, 8> flags{};
    std::size_t flagCount = 0;
    int width = 0;
    int precision = -1;  // -1: none given
    Length length = Length::none;
    char kind = 0;
};

// A va_list that functions can share by reference: passing one by value leaves it unusable.
// The analyzer does not follow it into the struct and takes it for uninitialised.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
struct Arguments {
    std::va_list list;
};

template <typename Char>
int ReadNumber(const Char*& at, Arguments& arguments) {
    if (*at == Char('*')) {
        ++at;
        return std::clamp(va_arg(arguments.list, int), -kMaxWidth, kMaxWidth);
    }
    int number = 0;
    for (; *at >= Char('0') && *at <= Char('9'); ++at) {
        number = std::min(number * 10 + static_cast<int>(*at - Char('0')), kMaxWidth);
    }
    return number;
}

// Reads what follows a percent sign and leaves `at` behind the conversion.
template <typename Char>
Conversion ReadConversion(const Char*& at, Arguments& arguments) {
    Conversion conversion;
    const auto addFlag = [&conversion](char flag) {
        if (conversion.flagCount < conversion.flags.size()) {
            conversion.flags[conversion.flagCount++] = flag;
        }
    };
    for (; *at == Char('-') || *at == Char('+') || *at == Char(' ') || *at == Char('#') ||
           *at == Char('0');
         ++at) {
        addFlag(static_cast<char>(*at));
    }
    conversion.width = ReadNumber(at, arguments);
    if (conversion.width < 0) {
        addFlag('-');
        conversion.width = -conversion.width;
    }
    if (*at == Char('.')) {
        ++at;
        conversion.precision = ReadNumber(at, arguments);
    }
    if (*at == Char('h')) {
        ++at;
        conversion.length = Length::half;
    } else if (*at == Char('l')) {
        ++at;
        conversion.length = Length::big;
        if (*at == Char('l')) {
            ++at;
            conversion.length = Length::bigger;
        }
    }
    if (*at != Char{}) {
        conversion.kind = static_cast<char>(*at++);
    }
    return conversion;
}

template <typename Char>
void Pad(BoundedText<Char>& out, int count) {
    for (; count > 0; --count) {
        out.Put(Char(' '));
    }
}

template <typename Char, typename Source>
void PutText(BoundedText<Char>& out, const Conversion& conversion, const Source* text,
             int available) {
    int count = 0;
    while ((available < 0 || count < available) &&
           (conversion.precision < 0 || count < conversion.precision) &&
           (available >= 0 || text[count] != Source{})) {
        ++count;
    }
    const int padding = conversion.width - count;
    if (!conversion.LeftAligned()) {
        Pad(out, padding);
    }
    for (int i = 0; i < count; ++i) {
        using Unsigned = std::conditional_t<sizeof(Source) == 1, unsigned char, Source>;
        out.Put(static_cast<Char>(static_cast<Unsigned>(text[i])));
    }
    if (conversion.LeftAligned()) {
        Pad(out, padding);
    }
}

template <typename Char, typename Source>
void PutTextArgument(BoundedText<Char>& out, const Conversion& conversion, const Source* text) {
    if (text == nullptr) {
        PutText(out, conversion, "(null)", -1);
    } else {
        PutText(out, conversion, text, -1);
    }
}

template <typename Char, typename Value>
void PutNumber(BoundedText<Char>& out, const Conversion& conversion, std::string_view length,
               Value value) {
    std::array<char, 32> format{};
    const std::string_view flags = conversion.Flags();
    std::snprintf(format.data(), format.size(), "%%%.*s*.*%.*s%c", static_cast<int>(flags.size()),
                  flags.data(), static_cast<int>(length.size()), length.data(), conversion.kind);
    std::array<char, kMaxNumber> number{};
    // The format is made of checked pieces above.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(number.data(), number.size(), format.data(), conversion.width,
                  conversion.precision, value);
#pragma GCC diagnostic pop
    for (const char* digit = number.data(); *digit != 0; ++digit) {
        out.Put(static_cast<Char>(*digit));
    }
}

template <typename Char>
void PutInteger(BoundedText<Char>& out, const Conversion& conversion, Arguments& arguments) {
    switch (conversion.length) {
        case Length::bigger:
            return PutNumber(out, conversion, "ll", va_arg(arguments.list, long long));
        case Length::big:
            return PutNumber(out, conversion, "l", va_arg(arguments.list, long));
        case Length::half:
            return PutNumber(out, conversion, "h", va_arg(arguments.list, int));
        case Length::none:
            return PutNumber(out, conversion, "", va_arg(arguments.list, int));
    }
}

// Whether %s and %c read wide characters in a format of this kind.
template <typename Char>
bool ReadsWide(const Conversion& conversion) {
    return conversion.length == Length::none ? sizeof(Char) == sizeof(wchar_t)
                                             : conversion.length != Length::half;
}

template <typename Char>
void PutConversion(BoundedText<Char>& out, const Conversion& conversion, Arguments& arguments) {
    switch (conversion.kind) {
        case 'd':
        case 'i':
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            return PutInteger(out, conversion, arguments);
        case 'f':
            return PutNumber(out, conversion, "", va_arg(arguments.list, double));
        case 's':
            if (ReadsWide<Char>(conversion)) {
                return PutTextArgument(out, conversion, va_arg(arguments.list, const wchar_t*));
            }
            return PutTextArgument(out, conversion, va_arg(arguments.list, const char*));
        case 'c':
            if (ReadsWide<Char>(conversion)) {
                const auto character = static_cast<wchar_t>(va_arg(arguments.list, std::wint_t));
                return PutText(out, conversion, &character, 1);
            } else {
                const auto character = static_cast<char>(va_arg(arguments.list, int));
                return PutText(out, conversion, &character, 1);
            }
        default:  // "%%", and what is no conversion: the character stands for itself
            if (conversion.kind != 0) {
                out.Put(static_cast<Char>(conversion.kind));
            }
    }
}

template <typename Char>
int Format(Char* text, std::size_t size, const Char* format, Arguments& arguments) {
    BoundedText<Char> out(text, size);
    while (*format != Char{}) {
        if (*format != Char('%')) {
            out.Put(*format++);
            continue;
        }
        ++format;
        const Conversion conversion = ReadConversion(format, arguments);
        PutConversion(out, conversion, arguments);
    }
    return out.Finish();
}

template <typename Char>
int FormatCopied(Char* text, std::size_t size, const Char* format, std::va_list list) {
    Arguments arguments;
    va_copy(arguments.list, list);
    const int result = Format(text, size, format, arguments);
    va_end(arguments.list);
    return result;
}

// NOLINTEND(clang-analyzer-valist.Uninitialized)

}  // namespace

int FormatBoundedV(char* text, std::size_t size, const char* format, std::va_list arguments) {
    return FormatCopied(text, size, format, arguments);
}

int FormatBoundedV(wchar_t* text, std::size_t size, const wchar_t* format, std::va_list arguments) {
    return FormatCopied(text, size, format, arguments);
}

}  // namespace Mirqos
