#pragma once

#include <memory>

#include "log/IDBGLogOutput.h"
#include "log/dbg/WideText.h"
#include "log/dbg/win32/CLogShareMemory.h"
#include "log/dbg/win32/CriticalSection.h"
#include "log/dbg/win32/ViewerBreakpoints.h"

namespace NSDBG {

/// Hands each line live to a log viewer in another process, while one runs: through the channel of
/// this executable, if the viewer listens to it. A line that matches a breakpoint of the viewer
/// holds its thread; others go on logging meanwhile.
///
/// Without a viewer a line costs one look-up of an event that does not exist. Named mutexes are
/// taken inside the object's critical section, never the other way round.
///
/// Operations that return int return 1 for done and 0 for not done.
class CSMOutput : public IDBGLogOutput {
public:
    CSMOutput() = default;
    /// With names other than the executable's and the library's, each if it is not empty.
    CSMOutput(LOGUTILS::WideString channelName, LOGUTILS::WideString sourceName);
    ~CSMOutput() override;
    CSMOutput(const CSMOutput&) = delete;
    CSMOutput& operator=(const CSMOutput&) = delete;

    /// A line that has no wide form of at most 1,023 characters is not written.
    void Write(int nLevel, int nErrorCode, const char* pszMessage) override;
    /// A longer line is cut to 1,023 characters.
    void Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) override;
    /// 9999 while a viewer runs, and else 0.
    int GetLevel() override;

    /// Every line is handed over at once.
    virtual void Flush();
    /// Lets go of the channel and of the breakpoints; the next line may open them again.
    virtual void Close();
    /// Runs before each line: opens what a viewer that has come asks for, closes what one that has
    /// gone left.
    virtual int Connect();
    /// Whether a viewer runs; then the names stand too.
    virtual int CheckViewer();
    virtual int OpenChannel();
    virtual void OpenBreakpoints();
    virtual void WriteToChannel(int nLevel, int nErrorCode, const wchar_t* pszMessage);

private:
    LOGUTILS::CriticalSection m_cs;  // guards the members below
    LOGUTILS::WideString m_strChannelName;
    LOGUTILS::WideString m_strSourceName;
    std::unique_ptr<CLogShareMemory> m_pShareMemory;  // null while no channel is open
    // Null while closed. A held thread shares it: the table has to outlive another thread's Close,
    // so that the next viewer finds in it who is held.
    std::shared_ptr<const LOGUTILS::ViewerBreakpoints> m_pBreakpoints;
};

}  // namespace NSDBG
