#pragma once

#include "log/dbg/LogRing.h"
#include "log/dbg/WideText.h"
#include "log/dbg/win32/CLogMessage.h"
#include "log/dbg/win32/NamedMutex.h"
#include "log/dbg/win32/Owned.h"

namespace NSDBG {

/// One channel, from the writer's side (Create, Write, Append) or the reader's (Open, Read).
/// Processes may work on it at the same time; the threads of one process take turns.
///
/// The channel's mutex counts as owned when its former owner ended while it held it: a record may
/// then be half written, but nothing in a ring leads anywhere else.
class CLogShareMemory {
public:
    explicit CLogShareMemory(LOGUTILS::WideString channelName);
    virtual ~CLogShareMemory();
    CLogShareMemory(const CLogShareMemory&) = delete;
    CLogShareMemory& operator=(const CLogShareMemory&) = delete;

    /// Makes the ring, or opens the one there is. 1 when that is done; 0 when no viewer has asked
    /// for this channel, or when Windows refused something. Waits for the mutex as long as it
    /// takes.
    virtual int Create();
    /// Opens a ring that a writer has made. Without one the channel stays closed.
    virtual void Open();
    virtual void Close();

    /// Adds a record with the caller's thread and the time now; texts are cut to their rooms. An
    /// empty text adds none.
    virtual void Write(int nLevel, int nErrorCode, const wchar_t* pszSource,
                       const wchar_t* pszText);

    /// Puts the records that are new since the last time into `messages`, in the place of whatever
    /// was there. 1 when the ring could be read.
    ///
    /// A reader that fell behind gets as many messages as were written, up to
    /// LOGUTILS::kMostNewRecords, of which only the last 1,024 are what they were: those before
    /// are lost and stand for newer ones. Without memory for them it throws std::bad_alloc, and the
    /// records stay new.
    virtual int Read(LogMessages& messages);

    /// Adds the record, unless its text is empty or the channel is closed, and tells the viewer.
    /// A mutex that is not to be had for 5 seconds, and the record is lost. Nothing waits for the
    /// reader: a full ring loses its oldest record.
    virtual void Append(const LOGUTILS::LogRecord& record);

    /// Whether the mutex and the ring are there to write or read.
    bool IsOpen() const { return m_mutex && m_hMapping; }

private:
    LOGUTILS::WideString m_strChannelName;
    LOGUTILS::NamedMutex m_mutex;
    LOGUTILS::KernelObject m_hMapping;
    LOGUTILS::KernelObject m_hEvent;
};

}  // namespace NSDBG
