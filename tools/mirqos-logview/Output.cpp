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
    Tool::WriteOutput((m_coloured ? Coloured(line, message) : line) + "\n");
    ToFile(line);
}

void Output::Note(const std::string& text) {
    const std::string line = "*** " + text;
    Tool::WriteOutput(line + "\n");
    ToFile(line);
}

void Output::Answer(const std::string& text) {
    Tool::WriteOutput(text);
}

void Output::ToFile(const std::string& line) {
    if (m_file) {
        const std::string bytes = line + "\n";
        m_file->WriteAt(m_end, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        m_end += bytes.size();
    }
}

bool IsColourTerminal() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) != FALSE &&
           SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

}  // namespace Mirqos::LogView
