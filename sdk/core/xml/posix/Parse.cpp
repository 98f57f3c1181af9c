#include <expat.h>

#include <cstring>
#include <exception>
#include <memory>
#include <new>

#include "sdk/core/xml/HiddenCharacters.h"
#include "sdk/core/xml/TreeBuilder.h"

namespace Mirqos::Xml {
namespace {

/// Between namespace and local name in what expat reports; no URI and no name can hold it.
constexpr char kSeparator = '\n';

struct Context {
    XML_Parser parser = nullptr;
    TreeBuilder builder;
    std::string refusal;
    std::exception_ptr thrown;

    /// Runs one event. expat is C: nothing may be thrown through it, and it can still report an
    /// event or two after it was told to stop.
    template <typename Event>
    void Handle(Event&& event) {
        if (thrown || !refusal.empty()) {
            return;
        }
        try {
            if (!event()) {
                refusal = builder.Error();
                XML_StopParser(parser, XML_FALSE);
            }
        } catch (...) {
            thrown = std::current_exception();
            XML_StopParser(parser, XML_FALSE);
        }
    }
};

Context& Of(void* userData) {
    return *static_cast<Context*>(userData);
}

void XMLCALL OnStart(void* userData, const XML_Char* name, const XML_Char** /*attributes*/) {
    Context& context = Of(userData);
    context.Handle([&] {
        const XML_Char* const separator = std::strrchr(name, kSeparator);
        return context.builder.Start(separator == nullptr ? name : separator + 1);
    });
}

void XMLCALL OnEnd(void* userData, const XML_Char* /*name*/) {
    Context& context = Of(userData);
    context.Handle([&] { return context.builder.End(); });
}

void XMLCALL OnText(void* userData, const XML_Char* text, int length) {
    Context& context = Of(userData);
    context.Handle([&] { return context.builder.Text({text, static_cast<std::size_t>(length)}); });
}

void XMLCALL OnDoctype(void* userData, const XML_Char* /*name*/, const XML_Char* /*systemId*/,
                       const XML_Char* /*publicId*/, int /*hasInternalSubset*/) {
    Context& context = Of(userData);
    context.Handle([&] { return context.builder.Refuse("a document type declaration"); });
}

}  // namespace

std::optional<Document> Parse(const char* data, std::size_t size, std::string& error) {
    if (size == 0 || size > kMaxBytes) {
        error = size == 0 ? "empty document" : "document too large";
        return std::nullopt;
    }
    std::string room;
    const std::string_view document = HideCharacters({data, size}, room);
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreateNS("UTF-8", kSeparator), &XML_ParserFree);
    if (parser == nullptr) {
        throw std::bad_alloc();
    }
    Context context;
    context.parser = parser.get();
    XML_SetUserData(parser.get(), &context);
    XML_SetElementHandler(parser.get(), &OnStart, &OnEnd);
    XML_SetCharacterDataHandler(parser.get(), &OnText);
    XML_SetStartDoctypeDeclHandler(parser.get(), &OnDoctype);

    const XML_Status status =
        XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE);
    if (context.thrown) {
        std::rethrow_exception(context.thrown);
    }
    if (status != XML_STATUS_OK) {
        error = "line " + std::to_string(XML_GetCurrentLineNumber(parser.get())) + ": " +
                (context.refusal.empty() ? XML_ErrorString(XML_GetErrorCode(parser.get()))
                                         : context.refusal);
        return std::nullopt;
    }
    return context.builder.Take();
}

}  // namespace Mirqos::Xml
