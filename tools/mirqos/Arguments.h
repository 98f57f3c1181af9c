#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Mirqos::Tool {

/// One option of the command line. Help and parser read the same table, so neither can know an
/// option that the other does not.
struct Option {
    std::string_view name;         ///< without the dashes
    std::string_view value;        ///< what its value is called in the help; empty for a switch
    std::string_view environment;  ///< variable that gives the value too; empty for none
    std::string_view help;
    char letter = '\0';  ///< a short name, as in -h; NUL for none
};

/// A command line taken apart. Knows no option by itself.
class Arguments {
public:
    /// `given` is the command line without the program's name. Options may stand anywhere, as
    /// "--name value" or "--name=value"; "--" ends them; of a repeated one the last holds. Of
    /// options with the same letter the first in `options` has it. Throws Failure (Usage) that
    /// names the option but never shows a value, which may be a secret.
    Arguments(const std::vector<std::string>& given, const std::vector<Option>& options);

    bool Has(std::string_view option) const;
    std::optional<std::string> Value(std::string_view option) const;
    /// Names of the options that were given.
    std::vector<std::string> Given() const;
    /// What is no option, in order: the command first.
    const std::vector<std::string>& Words() const { return m_words; }

private:
    std::map<std::string, std::string, std::less<>> m_values;
    std::vector<std::string> m_words;
};

}  // namespace Mirqos::Tool
