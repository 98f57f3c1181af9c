#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string_view>

#include "log/dbg/win32/Owned.h"
#include "platform/undo_windows_macros.h"

namespace Mirqos::Test {

/// An unnamed pipe.
class Pipe {
public:
    Pipe() {
        HANDLE reader = nullptr;
        HANDLE writer = nullptr;
        EXPECT_NE(CreatePipe(&reader, &writer, nullptr, 0), FALSE);
        m_reader.Reset(reader);
        m_writer.Reset(writer);
    }

    HANDLE Reader() const { return m_reader.Get(); }
    HANDLE Writer() const { return m_writer.Get(); }
    void CloseReader() { m_reader.Reset(); }
    void CloseWriter() { m_writer.Reset(); }

    void Write(std::string_view text) const {
        DWORD written = 0;
        EXPECT_NE(
            WriteFile(Writer(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr),
            FALSE);
    }

    /// The bytes that were written and not read yet; 0 also at the end.
    DWORD Unread() const {
        DWORD count = 0;
        return PeekNamedPipe(Reader(), nullptr, 0, nullptr, &count, nullptr) == FALSE ? 0 : count;
    }

private:
    LOGUTILS::KernelObject m_reader;
    LOGUTILS::KernelObject m_writer;
};

}  // namespace Mirqos::Test
