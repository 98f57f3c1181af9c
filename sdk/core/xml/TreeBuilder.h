#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/core/xml/Xml.h"

namespace Mirqos::Xml {

/// Makes the tree from a parser's events, on a stack of its own, and keeps the bounds. After a call
/// that answered false the document is refused and Error() tells why.
class TreeBuilder {
public:
    bool Start(std::string_view localName);
    /// Of a document with hidden characters.
    bool Text(std::string_view text);
    bool End();
    /// Always false.
    bool Refuse(const char* why);

    const std::string& Error() const { return m_error; }
    /// The root, once its end was seen; nothing before. Once only.
    std::optional<Element> Take();

private:
    std::vector<Element> m_open;
    std::optional<Element> m_root;
    std::size_t m_elements = 0;
    std::string m_error;
};

}  // namespace Mirqos::Xml
