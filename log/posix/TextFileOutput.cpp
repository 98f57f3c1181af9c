#include "log/posix/TextFileOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "log/dbg/LinePrefix.h"
#include "platform/text.h"

namespace Mirqos {
namespace {

constexpr int kLevel = 2;

}  // namespace

TextFileOutput::TextFileOutput(std::string path) : m_path(std::move(path)) {
}

TextFileOutput::~TextFileOutput() {
    if (m_file >= 0) {
        close(m_file);
    }
}

void TextFileOutput::Write(int nLevel, int nErrorCode, const char* pszMessage) {
    if (nLevel <= kLevel) {
        WriteLine(nLevel, nErrorCode, pszMessage);
    }
}

void TextFileOutput::Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) {
    if (nLevel <= kLevel) {
        WriteLine(nLevel, nErrorCode, NarrowText(pszMessage));
    }
}

int TextFileOutput::GetLevel() {
    return kLevel;
}

int TextFileOutput::Open() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_file < 0) {
        m_file = open(m_path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    }
    return m_file;
}

void TextFileOutput::WriteLine(int level, int errorCode, std::string_view message) {
    const int file = Open();
    if (file < 0) {
        return;
    }
    char prefix[160];
    FormatLinePrefix(prefix, sizeof(prefix), CurrentLinePrefix(level, errorCode));
    std::string line = prefix;
    line.append(message).append("\r\n");
    // One write for the whole line; what a full disk leaves out of it stays out.
    while (write(file, line.data(), line.size()) < 0 && errno == EINTR) {
    }
}

}  // namespace Mirqos
