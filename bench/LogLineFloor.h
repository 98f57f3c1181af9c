#pragma once

#include <string>

#include "log/dbg/win32/Owned.h"

namespace Mirqos::Bench {

/// Does what no log line can do without: the calls to Windows that reading the configuration and
/// appending a line to a shared file consist of, on objects of its own, with fixed bytes.
class LogLineFloor {
public:
    /// `path` names the file, and the mutex that all processes on it share.
    explicit LogLineFloor(const std::wstring& path);

    void WriteLine() const;
    /// What a line above the level cannot do without.
    void QueryLevel() const;

private:
    LOGUTILS::KernelObject m_configMutex;
    LOGUTILS::KernelObject m_fileMutex;
    LOGUTILS::File m_file;
};

}  // namespace Mirqos::Bench
