#pragma once

#include <windows.h>

#include "platform/undo_windows_macros.h"

namespace Mirqos::Test {

/// Puts a handle in the place of a standard stream's. The streams of C and C++ keep theirs.
class StandardHandle {
public:
    StandardHandle(DWORD stream, HANDLE handle) : m_stream(stream), m_before(GetStdHandle(stream)) {
        SetStdHandle(stream, handle);
    }
    ~StandardHandle() { SetStdHandle(m_stream, m_before); }
    StandardHandle(const StandardHandle&) = delete;
    StandardHandle& operator=(const StandardHandle&) = delete;

private:
    DWORD m_stream;
    HANDLE m_before;
};

}  // namespace Mirqos::Test
