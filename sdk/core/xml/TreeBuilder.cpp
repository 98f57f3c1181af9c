#include "sdk/core/xml/TreeBuilder.h"

#include <utility>

#include "sdk/core/xml/HiddenCharacters.h"

namespace Mirqos::Xml {

bool TreeBuilder::Refuse(const char* why) {
    m_error = why;
    return false;
}

bool TreeBuilder::Start(std::string_view localName) {
    if (RootHasEnded()) {
        return Refuse("more than one root element");
    }
    if (m_open.size() == kMaxDepth) {
        return Refuse("elements nested too deeply");
    }
    std::vector<Document::Node>& nodes = m_document.m_nodes;
    std::string& characters = m_document.m_characters;
    if (nodes.size() == kMaxElements) {
        return Refuse("too many elements");
    }
    if (InLeaf()) {
        // It is none any more, and beside children there is nothing but indentation.
        characters.resize(nodes.back().text);
    }
    const std::size_t name = characters.size();
    const std::size_t text = name + localName.size();
    m_open.push_back(nodes.size());
    nodes.push_back({name, text, text, 0});
    characters.append(localName);
    return true;
}

bool TreeBuilder::Text(std::string_view text) {
    // Only white space can stand outside the root; the parsers see to that.
    if (InLeaf()) {
        m_document.m_characters.append(text);
    }
    return true;
}

bool TreeBuilder::End() {
    if (m_open.empty()) {
        return Refuse("an end without a start");
    }
    std::vector<Document::Node>& nodes = m_document.m_nodes;
    std::string& characters = m_document.m_characters;
    if (InLeaf()) {
        RestoreCharacters(characters, nodes.back().text);
        nodes.back().textEnd = characters.size();
    }
    nodes[m_open.back()].following = nodes.size();
    m_open.pop_back();
    return true;
}

std::optional<Document> TreeBuilder::Take() {
    return RootHasEnded() ? std::optional(std::move(m_document)) : std::nullopt;
}

}  // namespace Mirqos::Xml
