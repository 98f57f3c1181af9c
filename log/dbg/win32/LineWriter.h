#pragma once

#include <string>

#include "log/dbg/WideText.h"
#include "log/dbg/win32/Owned.h"

namespace LOGUTILS {

/// The text as the bytes of a log file: UTF-16LE or in the ANSI code page. A text that has to be
/// converted and cannot be, or is then longer than 1023 characters of UTF-16 or 1023 bytes of ANSI,
/// becomes an empty one.
std::string EncodedText(const char* pszText, bool bUnicode);
std::string EncodedText(const wchar_t* pszText, bool bUnicode);

/// The parts of a line, in the encoding of its file.
struct EncodedLine {
    std::string m_header;  ///< the prefix
    std::string m_message;
    std::string m_tail;  ///< the source tag
};

/// Appends lines to an open log file. Lives no longer than the file; the caller holds the mutex on
/// which all writers of the file meet.
class LineWriter {
public:
    /// `pszPath` names the file in traces.
    LineWriter(const File& file, const wchar_t* pszPath, bool bUnicode)
        : m_file(file), m_pszPath(pszPath), m_bUnicode(bUnicode) {}

    template <typename Char>
    void Append(const char* pszPrefix, const Char* pszMessage, const wchar_t* pszTail) const {
        AppendParts({EncodedText(pszPrefix, m_bUnicode), EncodedText(pszMessage, m_bUnicode),
                     EncodedText(pszTail, m_bUnicode)});
    }

private:
    void AppendParts(const EncodedLine& line) const;
    void WritePart(const std::string& bytes, const wchar_t* pszFailure) const;
    void TraceFailure(const wchar_t* pszFailure) const;

    const File& m_file;
    const wchar_t* const m_pszPath;
    const bool m_bUnicode;
};

}  // namespace LOGUTILS
