#include "tools/mirqos-logview/Output.h"

#include <exception>
#include <utility>

#include "tools/mirqos-logview/RecordLine.h"
#include "tools/mirqos/Console.h"

namespace Mirqos::LogView {

Output::Output(const std::string& file, bool coloured) : m_coloured(coloured) {
    if (!file.empty()) {
        m_file.emplace(Tool::LocalFile::CreateNew(file));
    }
}

Output::~Output() {
    try {
        Flush();
    } catch (const std::exception&) {
        // The program ends with an error already, or wrote all before.
    }
}

void Output::Show(const NSDBG::CLogMessage& message) {
    const std::string line = LineOf(message);
    Add(m_coloured ? Coloured(line, message) : line, line);
}

void Output::Note(const std::string& text) {
    const std::string line = "*** " + text;
    Add(line, line);
}

void Output::Answer(const std::string& text) {
    Flush();
    m_isRead = m_isRead && Tool::WriteOutput(text);
}

// The file first: lines are taken from the channel but once, and the file is what stays.
void Output::Flush() {
    if (!m_filed.empty()) {
        const std::string filed = std::exchange(m_filed, {});
        m_file->WriteAt(m_end, reinterpret_cast<const unsigned char*>(filed.data()), filed.size());
        m_end += filed.size();
    }
    if (!m_shown.empty()) {
        const std::string shown = std::exchange(m_shown, {});
        m_isRead = m_isRead && Tool::WriteOutput(shown);
    }
}

void Output::Add(const std::string& shown, const std::string& filed) {
    m_shown += shown + "\n";
    if (m_file) {
        m_filed += filed + "\n";
    }
}

bool IsColourTerminal() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) != FALSE &&
           SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

}  // namespace Mirqos::LogView
