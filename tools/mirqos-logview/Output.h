#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "log/dbg/win32/CLogMessage.h"
#include "tools/mirqos/LocalFile.h"

namespace Mirqos::LogView {

/// Where lines go: the terminal or whatever stands in its place, and a file if one is wanted.
class Output {
public:
    /// `file` is the name of a file that does not exist yet, or empty. Throws Tool::Failure.
    Output(const std::string& file, bool coloured);

    void Show(const NSDBG::CLogMessage& message);
    /// A line of the program's own about what it watches; goes to the file too.
    void Note(const std::string& text);
    /// An answer to what was typed; not for the file.
    static void Answer(const std::string& text);

private:
    void ToFile(const std::string& line);

    bool m_coloured;
    std::optional<Tool::LocalFile> m_file;
    std::uint64_t m_end = 0;
};

/// Whether the output stream is a terminal; then it understands colours from now on.
bool IsColourTerminal();

}  // namespace Mirqos::LogView
