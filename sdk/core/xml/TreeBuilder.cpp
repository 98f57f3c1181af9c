#include "sdk/core/xml/TreeBuilder.h"

#include "sdk/core/xml/HiddenCharacters.h"

namespace Mirqos::Xml {
namespace {

/// An entry of a listing has some five children, and growing into them one by one takes longer than
/// to parse them.
constexpr std::size_t kUsualChildren = 8;

}  // namespace

bool TreeBuilder::Refuse(const char* why) {
    m_error = why;
    return false;
}

bool TreeBuilder::Start(std::string_view localName) {
    if (m_root) {
        return Refuse("more than one root element");
    }
    if (m_open.size() == kMaxDepth) {
        return Refuse("elements nested too deeply");
    }
    if (++m_elements > kMaxElements) {
        return Refuse("too many elements");
    }
    m_open.emplace_back();
    m_open.back().name = localName;
    return true;
}

bool TreeBuilder::Text(std::string_view text) {
    if (m_open.empty()) {
        // Only white space can stand outside the root; the parsers see to that.
        return true;
    }
    // Beside children there is nothing but indentation.
    if (m_open.back().children.empty()) {
        m_open.back().text.append(text);
    }
    return true;
}

bool TreeBuilder::End() {
    if (m_open.empty()) {
        return Refuse("an end without a start");
    }
    Element done = std::move(m_open.back());
    m_open.pop_back();
    RestoreCharacters(done.text);
    if (m_open.empty()) {
        m_root = std::move(done);
    } else {
        m_open.back().text.clear();
        std::vector<Element>& children = m_open.back().children;
        if (children.empty()) {
            children.reserve(kUsualChildren);
        }
        children.push_back(std::move(done));
    }
    return true;
}

std::optional<Element> TreeBuilder::Take() {
    return std::move(m_root);
}

}  // namespace Mirqos::Xml
