#pragma once

#include <cstddef>
#include <initializer_list>
#include <iterator>
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
/// A tree costs some 32 bytes for an element that takes 4 bytes in the document. The largest
/// answers, listings of 10,000 parts, have below 100,000 elements.
inline constexpr std::size_t kMaxElements = 1'000'000;

class Document;

/// An element of a document, or none, which has no name, no text and no children. Cheap to copy; it
/// and its texts are valid as long as its document stays where it is.
class Element {
public:
    class Iterator;
    class Range;

    Element() = default;

    explicit operator bool() const { return m_document != nullptr; }
    /// The local name, without a namespace prefix.
    std::string_view Name() const;
    /// All character data of a leaf, as XML gives it; empty beside children.
    std::string_view Text() const;
    /// In the order of the document.
    Range Children() const;
    /// The first child of that name, or none.
    Element Child(std::string_view name) const;
    /// The text of the first child of that name; an empty text where there is none.
    std::string_view TextOf(std::string_view childName) const { return Child(childName).Text(); }

private:
    friend class Document;
    Element(const Document& document, std::size_t place) : m_document(&document), m_place(place) {}

    const Document* m_document = nullptr;
    std::size_t m_place = 0;
};

class Element::Iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Element;
    using difference_type = std::ptrdiff_t;
    using pointer = const Element*;
    using reference = const Element&;

    explicit Iterator(Element element) : m_element(element) {}
    reference operator*() const { return m_element; }
    pointer operator->() const { return &m_element; }
    /// To the next child of the same element.
    Iterator& operator++();
    bool operator==(const Iterator& other) const {
        return m_element.m_place == other.m_element.m_place;
    }
    bool operator!=(const Iterator& other) const { return !(*this == other); }

private:
    Element m_element;
};

class Element::Range {
public:
    Range(Iterator begin, Iterator end) : m_begin(begin), m_end(end) {}
    Iterator begin() const { return m_begin; }
    Iterator end() const { return m_end; }

private:
    Iterator m_begin;
    Iterator m_end;
};

/// The elements of a document in its order, and behind each other what they say: a listing has
/// thousands of elements, and memory for each of them takes longer than to parse it.
class Document {
public:
    /// None for a default document.
    Element Root() const { return m_nodes.empty() ? Element() : Element(*this, 0); }

private:
    friend class Element;
    friend class TreeBuilder;
    /// Places in m_characters, where the text follows the name, and in m_nodes.
    struct Node {
        std::size_t name;
        std::size_t text;
        std::size_t textEnd;
        std::size_t following;  ///< the first node that is not inside this one
    };

    std::vector<Node> m_nodes;
    std::string m_characters;
};

/// The document with all of its elements. Nothing for one that is empty, not well-formed, beyond
/// the bounds above or has a document type declaration (so no entities of its own); `error` then
/// tells why in one line. Attributes, comments and processing instructions are passed over.
/// References to control characters, which XML 1.0 does not know, are read as services mean them.
std::optional<Document> Parse(const char* data, std::size_t size, std::string& error);

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
