#include <gtest/gtest.h>

#include <string>

#include "tests/support/FailingAllocation.h"
#include "tests/support/win32/FileOutputTest.h"

namespace Mirqos::Test {
namespace {

using NSDBG::CFileOutput;

class FileMemory : public FileOutputTest {};

TEST_F(FileMemory, ALineThatFindsNoMemoryIsLostAndThrowsNothing) {
    CFileOutput output;
    output.Write(1, 0, "before");
    const std::wstring message(3001, L'x');
    {
        const FailingAllocation failing(2 * message.size() + 1);  // its bytes and a terminator
        EXPECT_NO_THROW(output.Write(1, 0, message.c_str()));
    }
    CFileOutput other;  // waits for the mutex if that was not given back
    other.Write(1, 0, "after");
    EXPECT_EQ(MessagesOf(m_path).size(), 2u);
    EXPECT_TRUE(m_trace.Texts().empty());
    output.Write(1, 0, message.c_str());
    EXPECT_EQ(MessagesOf(m_path).size(), 3u);
}

}  // namespace
}  // namespace Mirqos::Test
