#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "log/dbg/win32/CLogMessage.h"
#include "tools/mirqos/LocalFile.h"

namespace Mirqos::LogView {

/// Where lines go: the terminal or whatever stands in its place, and a file if one is wanted. Lines
/// are gathered until Flush, because writing each by itself would take longer than logging it.
class Output {
public:
    /// `file` is the name of a file that does not exist yet, or empty. Throws Tool::Failure.
    Output(const std::string& file, bool coloured);
    /// What is still gathered goes out where it can.
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Show(const NSDBG::CLogMessage& message);
    /// A line of the program's own about what it watches; goes to the file too.
    void Note(const std::string& text);
    /// An answer to what was typed, at once; not for the file.
    void Answer(const std::string& text);
    /// Throws Tool::Failure when one of them cannot be written; what was meant for the other is not
    /// lost by that.
    void Flush();
    /// Whether lines still get anywhere: to a reader, as far as writing has shown, or to a file.
    bool IsWanted() const { return m_isRead || m_file; }

private:
    void Add(const std::string& shown, const std::string& filed);

    bool m_coloured;
    bool m_isRead = true;
    std::string m_shown;
    std::string m_filed;
    std::optional<Tool::LocalFile> m_file;
    std::uint64_t m_end = 0;
};

/// Whether the output stream is a terminal; then it understands colours from now on.
bool IsColourTerminal();

}  // namespace Mirqos::LogView
