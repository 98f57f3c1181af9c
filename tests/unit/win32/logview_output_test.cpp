#include "tools/mirqos-logview/Output.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "log/dbg/win32/CLogMessage.h"
#include "tests/support/win32/LogFolder.h"
#include "tests/support/win32/Pipe.h"
#include "tests/support/win32/StandardHandle.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogView {
namespace {

using Test::Pipe;
using Test::StandardHandle;

class LogViewOutput : public testing::Test {
protected:
    std::unique_ptr<Output> WithFile() const {
        return std::make_unique<Output>(Tool::ToUtf8(m_file), false);
    }
    std::string Filed() const { return Mirqos::Test::BytesOf(m_file); }

    Mirqos::Test::LogFolder m_folder;
    const std::wstring m_file = m_folder.PathOf(L"lines.txt");
    Pipe m_pipe;
};

TEST_F(LogViewOutput, LinesAreFiledWhereTheyCannotBeShown) {
    const StandardHandle output(STD_OUTPUT_HANDLE, m_pipe.Reader());  // takes no writing
    const auto lines = WithFile();
    lines->Note("line");
    EXPECT_THROW(lines->Flush(), Tool::Failure);
    EXPECT_EQ(Filed(), "*** line\n");
}

TEST_F(LogViewOutput, LinesThatAreStillGatheredAreWrittenAtItsEnd) {
    const StandardHandle output(STD_OUTPUT_HANDLE, m_pipe.Writer());
    auto lines = WithFile();
    lines->Note("line");
    EXPECT_EQ(Filed(), "");
    lines.reset();
    EXPECT_EQ(Filed(), "*** line\n");
}

TEST_F(LogViewOutput, ItsEndIsQuietWhereNothingCanBeWritten) {
    const StandardHandle output(STD_OUTPUT_HANDLE, m_pipe.Reader());
    Output lines("", false);
    lines.Note("line");
}

TEST_F(LogViewOutput, WithoutAReaderOnlyAFileWantsLines) {
    const StandardHandle output(STD_OUTPUT_HANDLE, m_pipe.Writer());
    Output shown("", false);
    const auto filed = WithFile();
    shown.Answer("read\n");
    EXPECT_TRUE(shown.IsWanted());
    m_pipe.CloseReader();
    for (Output* const lines : {&shown, filed.get()}) {
        lines->Note("unread");
        lines->Flush();
    }
    EXPECT_FALSE(shown.IsWanted());
    EXPECT_TRUE(filed->IsWanted());
    filed->Note("unread, too");
    filed->Flush();
    EXPECT_EQ(Filed(), "*** unread\n*** unread, too\n");
}

}  // namespace
}  // namespace Mirqos::LogView
