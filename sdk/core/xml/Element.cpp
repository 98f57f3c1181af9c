#include <algorithm>

#include "sdk/core/xml/Xml.h"

namespace Mirqos::Xml {

std::string_view Element::Name() const {
    if (m_document == nullptr) {
        return {};
    }
    const Document::Node& node = m_document->m_nodes[m_place];
    return std::string_view(m_document->m_characters).substr(node.name, node.text - node.name);
}

std::string_view Element::Text() const {
    if (m_document == nullptr) {
        return {};
    }
    const Document::Node& node = m_document->m_nodes[m_place];
    return std::string_view(m_document->m_characters).substr(node.text, node.textEnd - node.text);
}

Element::Range Element::Children() const {
    if (m_document == nullptr) {
        return {Iterator(*this), Iterator(*this)};
    }
    const std::size_t end = m_document->m_nodes[m_place].following;
    return {Iterator({*m_document, m_place + 1}), Iterator({*m_document, end})};
}

Element Element::Child(std::string_view name) const {
    const Range children = Children();
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const Element& child) { return child.Name() == name; });
    return found == children.end() ? Element() : *found;
}

Element::Iterator& Element::Iterator::operator++() {
    m_element.m_place = m_element.m_document->m_nodes[m_element.m_place].following;
    return *this;
}

}  // namespace Mirqos::Xml
