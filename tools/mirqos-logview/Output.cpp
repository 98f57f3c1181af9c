#include "tools/mirqos-logview/Output.h"

#include "tools/mirqos-logview/RecordLine.h"
#include "tools/mirqos/Console.h"

namespace Mirqos::LogView {

Output::Output(const std::string& file, bool coloured) : m_coloured(coloured) {
    if (!file.empty()) {
        m_file.emplace(Tool::LocalFile::CreateNew(file));
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
    Tool::WriteOutput(text);
}

void Output::Flush() {
    if (!m_shown.empty()) {
        Tool::WriteOutput(m_shown);
        m_shown.clear();
    }
    if (!m_filed.empty()) {
        m_file->WriteAt(m_end, reinterpret_cast<const unsigned char*>(m_filed.data()),
                        m_filed.size());
        m_end += m_filed.size();
        m_filed.clear();
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
