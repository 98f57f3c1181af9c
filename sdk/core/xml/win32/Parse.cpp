#include <windows.h>
// after windows.h, which they do not include themselves
#include <objidl.h>
#include <xmllite.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

#include "sdk/core/xml/HiddenCharacters.h"
#include "sdk/core/xml/TreeBuilder.h"
#include "sdk/core/xml/win32/CutDocument.h"

namespace Mirqos::Xml {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};

/// The document as the stream that XmlLite reads. Lives on the stack of Parse, which outlives the
/// reader, so references are not counted.
class MemoryStream final : public ISequentialStream {
public:
    explicit MemoryStream(std::string_view document) : m_left(document) {}
    MemoryStream(const MemoryStream&) = delete;
    MemoryStream& operator=(const MemoryStream&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (id == __uuidof(IUnknown) || id == __uuidof(ISequentialStream)) {
            *object = static_cast<ISequentialStream*>(this);
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE Read(void* to, ULONG room, ULONG* read) override {
        std::size_t piece = std::min<std::size_t>(room, m_left.size());
        // Wine's reader spoils a character beyond ASCII that ends a piece, so a piece ends before,
        // as long as there is anything else in it.
        const auto ascii = std::find_if(m_left.rend() - static_cast<std::ptrdiff_t>(piece),
                                        m_left.rend(), [](char c) { return (c & 0x80) == 0; });
        if (ascii != m_left.rend()) {
            piece = static_cast<std::size_t>(m_left.rend() - ascii);
        }
        std::memcpy(to, m_left.data(), piece);
        m_left.remove_prefix(piece);
        if (read != nullptr) {
            *read = static_cast<ULONG>(piece);
        }
        return piece == 0 ? S_FALSE : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return E_ACCESSDENIED; }

private:
    std::string_view m_left;
};

void Check(HRESULT result) {
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
}

/// The document without what could claim another encoding than UTF-8, from its first element,
/// comment or instruction on: Wine's reader takes a leading blank for an unknown encoding.
std::string_view WithoutProlog(std::string_view document) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    constexpr std::string_view declaration = "<?xml ";
    constexpr std::string_view declarationEnd = "?>";
    if (document.substr(0, mark.size()) == mark) {
        document.remove_prefix(mark.size());
    }
    if (document.substr(0, declaration.size()) == declaration) {
        const auto end = document.find(declarationEnd);
        if (end != std::string_view::npos) {
            document.remove_prefix(end + declarationEnd.size());
        }
    }
    const auto first = document.find_first_not_of(kBlanks);
    return first != std::string_view::npos ? document.substr(first) : std::string_view();
}

/// Whether the document holds a control character that XML does not know. Wine's reader (8.0) ends
/// the process at some of them, instead of refusing the document as XmlLite does.
bool HasControlCharacter(std::string_view document) {
    return std::any_of(document.begin(), document.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 && kBlanks.find(c) == kBlanks.npos;
    });
}

/// UTF-8 of `length` UTF-16 units; false where they are not valid UTF-16.
bool ToUtf8(const wchar_t* wide, UINT length, std::string& narrow) {
    narrow.clear();
    if (length == 0) {
        return true;
    }
    const int units = static_cast<int>(length);
    const int size = WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide, units, nullptr, 0,
                                         nullptr, nullptr);
    if (size <= 0) {
        return false;
    }
    narrow.resize(static_cast<std::size_t>(size));
    return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide, units, narrow.data(), size,
                               nullptr, nullptr) == size;
}

/// Feeds one document to a builder.
class Reading {
public:
    Reading(IXmlReader& reader, TreeBuilder& builder) : m_reader(reader), m_builder(builder) {}

    /// True at the end of a well-formed document; else Error() tells why.
    bool Run() {
        for (;;) {
            XmlNodeType type = XmlNodeType_None;
            const HRESULT result = m_reader.Read(&type);
            Check(result);
            if (result == S_FALSE) {
                return true;
            }
            if (FAILED(result)) {
                return Refuse("not well-formed, result " + std::to_string(result));
            }
            if (!Take(type)) {
                return Refuse(m_builder.Error());
            }
        }
    }
    const std::string& Error() const { return m_error; }

private:
    bool Take(XmlNodeType type) {
        switch (type) {
            case XmlNodeType_Element: {
                // Asked before the name: it describes the element the reader stands on.
                const bool empty = m_reader.IsEmptyElement() != FALSE;
                // Wine's reader (8.0) takes "<>" for an element.
                return Fetch(&IXmlReader::GetLocalName) &&
                       (!m_text.empty() || m_builder.Refuse("an element without a name")) &&
                       m_builder.Start(m_text) && (!empty || m_builder.End());
            }
            case XmlNodeType_EndElement:
                return m_builder.End();
            case XmlNodeType_Text:
            case XmlNodeType_CDATA:
            case XmlNodeType_Whitespace:
                return Fetch(&IXmlReader::GetValue) && m_builder.Text(m_text);
            case XmlNodeType_DocumentType:
                return m_builder.Refuse("a document type declaration");
            default:
                return true;
        }
    }

    bool Fetch(HRESULT (STDMETHODCALLTYPE IXmlReader::*get)(LPCWSTR*, UINT*)) {
        const wchar_t* wide = nullptr;
        UINT length = 0;
        const HRESULT result = (m_reader.*get)(&wide, &length);
        Check(result);
        return SUCCEEDED(result) && ToUtf8(wide, length, m_text)
                   ? true
                   : m_builder.Refuse("text that is not valid Unicode");
    }

    bool Refuse(const std::string& why) {
        UINT line = 0;
        m_reader.GetLineNumber(&line);
        m_error = "line " + std::to_string(line) + ": " + why;
        return false;
    }

    IXmlReader& m_reader;
    TreeBuilder& m_builder;
    std::string m_text;
    std::string m_error;
};

}  // namespace

std::optional<Document> Parse(const char* data, std::size_t size, std::string& error) {
    if (size == 0 || size > kMaxBytes) {
        error = size == 0 ? "empty document" : "document too large";
        return std::nullopt;
    }
    std::string room;
    const std::string_view document = HideCharacters(WithoutProlog({data, size}), room);
    if (IsCut(document)) {
        error = "the document ends too early";
        return std::nullopt;
    }
    if (HasControlCharacter(document)) {
        error = "a character that is none of XML's";
        return std::nullopt;
    }
    MemoryStream stream(document);
    void* created = nullptr;
    HRESULT result = CreateXmlReader(__uuidof(IXmlReader), &created, nullptr);
    Check(result);
    const std::unique_ptr<IXmlReader, Release> reader(static_cast<IXmlReader*>(created));
    if (SUCCEEDED(result)) {
        result = reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit);
    }
    if (SUCCEEDED(result)) {
        // The builder keeps the exact bound.
        result = reader->SetProperty(XmlReaderProperty_MaxElementDepth, kMaxDepth + 1);
    }
    if (SUCCEEDED(result)) {
        result = reader->SetInput(&stream);
    }
    Check(result);
    if (FAILED(result)) {
        error = "the system's XML reader is not available, result " + std::to_string(result);
        return std::nullopt;
    }
    TreeBuilder builder;
    Reading reading(*reader, builder);
    if (!reading.Run()) {
        error = reading.Error();
        return std::nullopt;
    }
    std::optional<Document> parsed = builder.Take();
    if (!parsed) {
        error = "the document ends too early";
    }
    return parsed;
}

}  // namespace Mirqos::Xml
