#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// A document whose members keep the order in which they were added.
using Json = nlohmann::ordered_json;

/// Adds the member `name`. JSON can hold Unicode only: a text that is not UTF-8 goes in with its
/// foreign bytes as "\xNN" and its backslashes doubled, and a member `name`Escaped, true, tells so.
void AddText(Json& object, const std::string& name, std::string_view text);

/// One line, with its end. Every text in `document` has to be UTF-8.
std::string Dump(const Json& document);

/// Writes an object with one long array in it as the entries come, so that no listing is too large
/// for the memory. What was written is a document once End was called.
class JsonList {
public:
    using Sink = std::function<void(std::string_view)>;

    /// `head`: the members before the array; `name`: the array's.
    JsonList(Sink sink, const Json& head, const std::string& name);

    void Add(const Json& entry);
    /// `tail`: the members behind the array.
    void End(const Json& tail);

private:
    Sink m_sink;
    bool m_empty = true;
};

}  // namespace Mirqos::Tool
