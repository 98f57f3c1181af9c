#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "log/dbg/LogRing.h"
#include "platform/undo_windows_macros.h"

namespace NSDBG {

/// A record that was taken from a channel. It counts its references, from 1 on, and deletes itself
/// with the last one; any thread may add and release references. Texts live as long as it does.
class CLogMessage {
protected:
    virtual ~CLogMessage();  // stands first in the table of virtual functions

public:
    explicit CLogMessage(const LOGUTILS::LogRecord& record);
    CLogMessage(const CLogMessage&) = delete;
    CLogMessage& operator=(const CLogMessage&) = delete;

    virtual std::int32_t AddRef();
    /// The count that is left.
    virtual std::int32_t Release();

    /// What a log file's line would begin with, the blank at its end included.
    virtual std::wstring GetPrefix() const;
    virtual const wchar_t* GetChannel() const;
    virtual const wchar_t* GetSource() const;
    virtual std::uint32_t GetProcessId() const;
    virtual std::uint32_t GetThreadId() const;
    virtual std::uint32_t GetErrorCode() const;
    virtual std::uint32_t GetLevel() const;
    virtual SYSTEMTIME GetTime() const;
    virtual const wchar_t* GetText() const;

private:
    std::atomic<std::int32_t> m_nReferences{1};
    std::unique_ptr<LOGUTILS::LogRecord> m_pRecord;
};

/// One reference, released at its end.
struct ReleaseLogMessage {
    void operator()(CLogMessage* pMessage) const { pMessage->Release(); }
};
using LogMessageReference = std::unique_ptr<CLogMessage, ReleaseLogMessage>;
using LogMessages = std::vector<LogMessageReference>;

}  // namespace NSDBG
