#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/core/xml/Xml.h"

namespace Mirqos::Xml {

/// Makes the tree from a parser's events and keeps the bounds. After a call
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
    /// The document, once the end of its root was seen; nothing before. Once only.
    std::optional<Document> Take();

private:
    bool RootHasEnded() const { return m_open.empty() && !m_document.m_nodes.empty(); }
    /// Whether the element opened last is open and has no children so far.
    bool InLeaf() const {
        return !m_open.empty() && m_open.back() + 1 == m_document.m_nodes.size();
    }

    Document m_document;
    std::vector<std::size_t> m_open;  ///< places of the nodes whose end was not seen
    std::string m_error;
};

}  // namespace Mirqos::Xml
