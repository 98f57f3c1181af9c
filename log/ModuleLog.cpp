#include "log/ModuleLog.h"

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <string>

#include "log/CMIRQOSLog.h"
#include "platform/format.h"

namespace {

constexpr std::size_t kLineRoom = 1024;  // characters of one line, the terminator included

bool IsMeantFor(IDBGLogOutput* pOutput, int nLevel) {
    return pOutput != nullptr && nLevel <= pOutput->GetLevel();
}

template <typename Char>
void WriteTrimmed(CMIRQOSLog& log, int nLevel, const Char* pszText) {
    Char szLine[kLineRoom] = {};
    const std::size_t nLength = std::min(std::char_traits<Char>::length(pszText), kLineRoom - 1);
    std::copy_n(pszText, nLength, szLine);

    const Char* pszBegin = szLine;
    while (*pszBegin == Char('\n')) {
        ++pszBegin;
    }
    for (Char* pEnd = szLine + nLength; pEnd > pszBegin && pEnd[-1] == Char('\n'); --pEnd) {
        pEnd[-1] = Char{};
    }

    log.m_pFileOutput->Write(nLevel, 0, pszBegin);
    if (log.m_pSMOutput != nullptr) {
        log.m_pSMOutput->Write(nLevel, 0, pszBegin);
    }
}

template <typename Char>
int WriteLine(CMIRQOSLog& log, int nLevel, const Char* pszFormat, std::va_list arguments) {
    Char szText[kLineRoom];
    const int nResult = Mirqos::FormatBoundedV(szText, kLineRoom, pszFormat, arguments);
    if (log.m_pFileOutput == nullptr) {
        return nResult;
    }
    if (IsMeantFor(log.m_pFileOutput.get(), nLevel) || IsMeantFor(log.m_pSMOutput.get(), nLevel)) {
        WriteTrimmed(log, nLevel, szText);
    }
    return nResult;
}

}  // namespace

CMIRQOSLog g_ModuleLog(Aws::Utils::Logging::LogLevel::Warn);

int ModuleLog(CMIRQOSLog* pLog, int nLevel, const char* pszFormat, ...) {
    if (nLevel > pLog->m_nLevel) {
        return 0;
    }
    std::va_list arguments;
    va_start(arguments, pszFormat);
    const int nResult = WriteLine(*pLog, nLevel, pszFormat, arguments);
    va_end(arguments);
    return nResult;
}

int ModuleLogW(CMIRQOSLog* pLog, int nLevel, const wchar_t* pszFormat, ...) {
    if (nLevel > pLog->m_nLevel) {
        return 0;
    }
    std::va_list arguments;
    va_start(arguments, pszFormat);
    const int nResult = WriteLine(*pLog, nLevel, pszFormat, arguments);
    va_end(arguments);
    return nResult;
}
