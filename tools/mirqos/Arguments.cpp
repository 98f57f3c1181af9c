#include "tools/mirqos/Arguments.h"

#include <algorithm>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

Arguments::Arguments(const std::vector<std::string>& given, const std::vector<Option>& options) {
    for (std::size_t i = 0; i < given.size(); ++i) {
        const std::string_view word = given[i];
        if (word == "--") {
            m_words.insert(m_words.end(), given.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                           given.end());
            return;
        }
        if (word.size() < 2 || word.front() != '-') {
            m_words.emplace_back(word);
            continue;
        }
        const std::size_t equals = word.find('=');
        const std::string_view name = word.substr(0, equals);
        const auto option = std::find_if(options.begin(), options.end(), [&](const Option& known) {
            return name.substr(0, 2) == "--"
                       ? known.name == name.substr(2)
                       : name.size() == 2 && known.letter == name[1] && known.letter != '\0';
        });
        if (option == options.end()) {
            throw Failure(ExitCode::Usage, "unknown option " + Printable(name));
        }
        std::string value;
        if (option->value.empty()) {
            if (equals != std::string_view::npos) {
                throw Failure(ExitCode::Usage, std::string(name) + " takes no value");
            }
        } else if (equals != std::string_view::npos) {
            value = word.substr(equals + 1);
        } else if (i + 1 < given.size()) {
            value = given[++i];
        } else {
            throw Failure(ExitCode::Usage,
                          std::string(name) + " needs a value: " + std::string(option->value));
        }
        m_values[std::string(option->name)] = value;
    }
}

bool Arguments::Has(std::string_view option) const {
    return m_values.find(option) != m_values.end();
}

std::optional<std::string> Arguments::Value(std::string_view option) const {
    const auto found = m_values.find(option);
    return found == m_values.end() ? std::nullopt : std::optional<std::string>(found->second);
}

std::vector<std::string> Arguments::Given() const {
    std::vector<std::string> names;
    for (const auto& [name, value] : m_values) {
        names.push_back(name);
    }
    return names;
}

}  // namespace Mirqos::Tool
