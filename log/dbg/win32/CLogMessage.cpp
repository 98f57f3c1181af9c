#include "log/dbg/win32/CLogMessage.h"

namespace NSDBG {

CLogMessage::CLogMessage(const LOGUTILS::LogRecord& record)
    : m_pRecord(std::make_unique<LOGUTILS::LogRecord>(record)) {
    LOGUTILS::EndTexts(*m_pRecord);
}

CLogMessage::~CLogMessage() = default;

std::int32_t CLogMessage::AddRef() {
    return ++m_nReferences;
}

std::int32_t CLogMessage::Release() {
    const std::int32_t nLeft = --m_nReferences;
    if (nLeft <= 0) {
        delete this;
    }
    return nLeft;
}

std::wstring CLogMessage::GetPrefix() const {
    return LOGUTILS::PrefixOf(*m_pRecord);
}

const wchar_t* CLogMessage::GetChannel() const {
    return m_pRecord->m_szChannel;
}

const wchar_t* CLogMessage::GetSource() const {
    return m_pRecord->m_szSource;
}

std::uint32_t CLogMessage::GetProcessId() const {
    return m_pRecord->m_dwProcessId;
}

std::uint32_t CLogMessage::GetThreadId() const {
    return m_pRecord->m_dwThreadId;
}

std::uint32_t CLogMessage::GetErrorCode() const {
    return m_pRecord->m_dwErrorCode;
}

std::uint32_t CLogMessage::GetLevel() const {
    return m_pRecord->m_dwLevel;
}

SYSTEMTIME CLogMessage::GetTime() const {
    const LOGUTILS::LogTime& time = m_pRecord->m_time;
    return {time.m_wYear, time.m_wMonth,  time.m_wDayOfWeek, time.m_wDay,
            time.m_wHour, time.m_wMinute, time.m_wSecond,    time.m_wMilliseconds};
}

const wchar_t* CLogMessage::GetText() const {
    return m_pRecord->m_szText;
}

}  // namespace NSDBG
