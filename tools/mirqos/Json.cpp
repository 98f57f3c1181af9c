#include "tools/mirqos/Json.h"

#include <utility>

#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

/// The members of `object` without its braces.
std::string Members(const Json& object) {
    const std::string text = object.dump();
    return text.substr(1, text.size() - 2);
}

}  // namespace

void AddText(Json& object, const std::string& name, std::string_view text) {
    if (IsUtf8(text)) {
        object[name] = text;
    } else {
        object[name] = EscapeForeignBytes(text);
        object[name + "Escaped"] = true;
    }
}

std::string Dump(const Json& document) {
    return document.dump() + "\n";
}

JsonList::JsonList(Sink sink, const Json& head, const std::string& name) : m_sink(std::move(sink)) {
    m_sink("{" + Members(head) + (head.empty() ? "" : ",") + Json(name).dump() + ":[");
}

void JsonList::Add(const Json& entry) {
    m_sink((m_empty ? "\n" : ",\n") + entry.dump());
    m_empty = false;
}

void JsonList::End(const Json& tail) {
    m_sink(std::string(m_empty ? "]" : "\n]") + (tail.empty() ? "" : ",") + Members(tail) + "}\n");
}

}  // namespace Mirqos::Tool
