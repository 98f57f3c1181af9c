#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Reading and writing the small XML documents of a service. Reading stands on the system's own
/// pull or push parser: XmlLite in win32/, expat in posix/. Everything is UTF-8. Free of shared
/// state.
namespace Mirqos::Xml {

/// Answers come from the network; a document beyond one of these bounds is refused.
inline constexpr std::size_t kMaxDepth = 64;
inline constexpr std::size_t kMaxBytes = std::size_t{64} * 1024 * 1024;
/// A tree costs some 100 bytes for an element that takes 4 bytes in the document. The largest
/// answers, listings of 10,000 parts, have below 100,000 elements.
inline constexpr std::size_t kMaxElements = 1'000'000;

struct Element {
    std::string name;  ///< local name, without a namespace prefix
    std::string text;  ///< all character data of a leaf, as XML gives it; empty beside children
    std::vector<Element> children;  ///< in the order of the document

    /// The first child of that name, or null. Valid as long as `children` is not changed.
    const Element* Child(std::string_view childName) const;
    /// The text of the first child of that name; an empty text where there is none.
    const std::string& TextOf(std::string_view childName) const;
};

/// The root element of the document. Nothing for a document that is empty, not well-formed, beyond
/// the bounds above or has a document type declaration (so no entities of its own); `error` then
/// tells why in one line. Attributes, comments and processing instructions are passed over.
/// References to control characters, which XML 1.0 does not know, are read as services mean them.
std::optional<Element> Parse(const char* data, std::size_t size, std::string& error);

/// Writes one document, without white space between elements. Names have to be XML names; texts and
/// attribute values may hold anything and are escaped.
class Writer {
public:
    using Attribute = std::pair<std::string_view, std::string_view>;

    Writer();
    void Open(std::string_view name, std::initializer_list<Attribute> attributes = {});
    void Leaf(std::string_view name, std::string_view text);
    /// Ends the element opened last; needs one that is open.
    void Close();
    /// The document. Elements still open are closed; the writer is spent afterwards.
    std::string Take();

private:
    void Escape(std::string_view text);

    std::string m_document;
    std::vector<std::string> m_open;
};

}  // namespace Mirqos::Xml
