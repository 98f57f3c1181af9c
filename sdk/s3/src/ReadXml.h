#pragma once

#include <aws/core/utils/memory/stl/AWSVector.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

#include "sdk/core/xml/Xml.h"

/// Reading results out of the XML of an answer.
namespace Mirqos::S3 {

/// A value, made from its element, for each child called `name`, in their order.
template <typename Value>
Aws::Vector<Value> ReadAll(const Xml::Element& parent, std::string_view name) {
    const Xml::Element::Range children = parent.Children();
    Aws::Vector<Value> values;
    values.reserve(static_cast<std::size_t>(
        std::count_if(children.begin(), children.end(),
                      [&](const Xml::Element& child) { return child.Name() == name; })));
    for (const Xml::Element& child : children) {
        if (child.Name() == name) {
            values.emplace_back(child);
        }
    }
    return values;
}

/// Without the white space around it.
inline std::string_view Trimmed(std::string_view text) {
    constexpr char kBlanks[] = " \t\r\n";
    const auto first = text.find_first_not_of(kBlanks);
    return first == text.npos ? std::string_view()
                              : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

/// "true" in any letter case, or 1: who takes another "yes" for a no ends a listing too early.
inline bool IsTrue(std::string_view text) {
    constexpr std::string_view kTrue = "true";
    const std::string_view word = Trimmed(text);
    return word == "1" ||
           std::equal(word.begin(), word.end(), kTrue.begin(), kTrue.end(),
                      [](char c, char lower) { return c == lower || c == lower - 'a' + 'A'; });
}

/// A size in bytes in decimal; 0 for anything else.
inline long long SizeOf(std::string_view untrimmed) {
    const std::string_view text = Trimmed(untrimmed);
    long long size = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, size);
    return problem == std::errc() && stop == end && size >= 0 ? size : 0;
}

}  // namespace Mirqos::S3
