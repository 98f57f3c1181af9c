#include "log/dbg/win32/LineWriter.h"

#include "log/dbg/LogText.h"
#include "log/dbg/win32/AnsiText.h"
#include "log/dbg/win32/Trace.h"
#include "log/dbg/win32/WindowsCalls.h"
#include "platform/process.h"

namespace LOGUTILS {

std::string EncodedText(const char* pszText, bool bUnicode) {
    if (!bUnicode) {
        return pszText;
    }
    wchar_t szWide[kLineRoom];
    WidenAnsi(szWide, pszText);
    return Utf16Bytes(szWide);
}

std::string EncodedText(const wchar_t* pszText, bool bUnicode) {
    if (bUnicode) {
        return Utf16Bytes(pszText);
    }
    char szNarrow[kLineRoom];
    const int nLength = WideCharToMultiByte(CP_ACP, 0, pszText, -1, szNarrow,
                                            static_cast<int>(kLineRoom), nullptr, nullptr);
    return nLength == 0 ? std::string() : std::string(szNarrow);
}

void LineWriter::AppendParts(const EncodedLine& line) const {
    if (!Windows().setFilePointer(m_file.Get(), LARGE_INTEGER{}, nullptr, FILE_END)) {
        TraceFailure(L"[%d:%d] Failed to SetFilePointer. ERR=%d, [%d]File=%s\r\n");
        return;
    }
    WritePart(line.m_header, L"[%d:%d] Failed to Write log header. ERR=%d, [%d]File=%s\r\n");
    WritePart(line.m_message, L"[%d:%d] Failed to Write log message. ERR=%d, [%d]File=%s\r\n");
    WritePart(line.m_tail, L"[%d:%d] Failed to Write log tail. ERR=%d, [%d]File=%s\r\n");
    WritePart(EncodedText(L"\r\n", m_bUnicode),
              L"[%d:%d] Failed to Write [rn]. ERR=%d, [%d]File=%s\r\n");
}

void LineWriter::WritePart(const std::string& bytes, const wchar_t* pszFailure) const {
    if (bytes.empty()) {
        return;
    }
    DWORD dwWritten = 0;
    if (!Windows().writeFile(m_file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()),
                             &dwWritten, nullptr)) {
        TraceFailure(pszFailure);
    }
}

void LineWriter::TraceFailure(const wchar_t* pszFailure) const {
    const DWORD dwError = GetLastError();
    Trace(pszFailure, Mirqos::CurrentProcessId(), Mirqos::CurrentThreadId(), dwError,
          m_bUnicode ? 1 : 0, m_pszPath);
}

}  // namespace LOGUTILS
