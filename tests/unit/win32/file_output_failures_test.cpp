#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "log/dbg/LogText.h"
#include "log/dbg/win32/NamedMutex.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/FileOutputTest.h"

namespace Mirqos::Test {
namespace {

using Access = NSDBG::FileOutputTestAccess;
using LOGUTILS::WindowsCalls;
using NSDBG::CFileOutput;
using Texts = std::vector<std::wstring>;

/// What a failing call costs: the line at most, and never the next one.
class FileFailures : public FileOutputTest {
protected:
    void SetUp() override {
        m_output.Write(1, 0, "before");
        ASSERT_EQ(MessagesOf(m_path).size(), 1u);
    }

    // The messages of the lines "before", whatever `work` left, and the next.
    template <typename Work>
    Texts MessagesAround(Work work) {
        work();
        m_output.Write(1, 0, "after");
        return MessagesOf(m_path);
    }

    // The trace of a failure of the open file.
    std::wstring Failure(const std::wstring& what, DWORD dwError) const {
        return TracePrefix() + what + L" ERR=" + std::to_wstring(dwError) + L", [1]File=" + m_path +
               L"\r\n";
    }
    std::wstring WaitFailure() const {
        return TracePrefix() + L"Failed to wait mutex for file[" + m_path + L"]\r\n";
    }

    // What is written when part `nPart` (from 1) of a line cannot be.
    std::wstring LineWithoutPart(int nPart) {
        const CallSpy<&WindowsCalls::writeFile> write([&](HANDLE hFile, const void* pBytes,
                                                          DWORD dwSize, DWORD* pdwWritten,
                                                          OVERLAPPED* pOverlapped) {
            if (write.Calls() == nPart) {
                SetLastError(ERROR_DISK_FULL);
                return FALSE;
            }
            return write.Real(hFile, pBytes, dwSize, pdwWritten, pOverlapped);
        });
        const std::uint64_t nEnd = FileSizeOf(m_path);
        m_output.Write(1, 0, "message");
        EXPECT_EQ(write.Calls(), 4);
        return TextOfUtf16(BytesOf(m_path, nEnd));
    }

    // Waits for mutexes fail with `dwResult` from here on, but for those of the block.
    static auto FileWait(DWORD dwResult, std::vector<DWORD>& waits) {
        return [dwResult, &waits](HANDLE hObject, DWORD dwWait) {
            waits.push_back(dwWait);
            return waits.size() == kFileWait ? dwResult : WaitForSingleObject(hObject, dwWait);
        };
    }
    static constexpr std::size_t kFileWait = 3;  // after those for the level and for the path

    CFileOutput m_output;
};

TEST_F(FileFailures, AFileThatCannotBeOpenedCostsTheLine) {
    SetPath(PathOf(L"b.Log"));
    {
        const CallSpy<&WindowsCalls::createFile> createFile([](auto...) {
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
        m_output.Write(1, 0, "lost");
    }
    EXPECT_EQ(m_trace.Texts(), Texts{TracePrefix() + L"Failed to create file [" + PathOf(L"b.Log") +
                                     L"]. ERR=5\r\n"});
    EXPECT_FALSE(Exists(PathOf(L"b.Log")));
    m_output.Write(1, 0, "written");
    EXPECT_EQ(MessagesOf(PathOf(L"b.Log")).size(), 1u);
}

TEST_F(FileFailures, WithoutAMutexTheFileIsClosedAgainAndTheLineLost) {
    SetPath(PathOf(L"b.Log"));
    {
        const CallSpy<&WindowsCalls::createMutex> createMutex([](auto...) {
            SetLastError(ERROR_ACCESS_DENIED);
            return HANDLE{};
        });
        m_output.Write(1, 0, "lost");
    }
    EXPECT_EQ(m_trace.Texts(), Texts{TracePrefix() + L"Failed to create mutex with name [" +
                                     LOGUTILS::FileMutexName(PathOf(L"b.Log")) + L"]. ERR=5\r\n"});
    EXPECT_FALSE(Access::IsFileOpen(m_output));
    EXPECT_EQ(FileSizeOf(PathOf(L"b.Log")), 0u);
    m_output.Write(1, 0, "written");
    EXPECT_EQ(MessagesOf(PathOf(L"b.Log")).size(), 1u);
}

TEST_F(FileFailures, WithoutANameThereIsNoMutex) {
    SetPath(L"");
    const CallSpy<&WindowsCalls::createFile> createFile(
        [&](const wchar_t*, DWORD dwAccess, DWORD dwShare, SECURITY_ATTRIBUTES* pSecurity,
            DWORD dwDisposition, DWORD dwFlags, HANDLE hTemplate) {
            return createFile.Real(m_path.c_str(), dwAccess, dwShare, pSecurity, dwDisposition,
                                   dwFlags, hTemplate);
        });
    m_output.Write(1, 0, "lost");
    EXPECT_EQ(m_trace.Texts(),
              Texts{TracePrefix() + L"Failed to create mutex. File name is empty\r\n"});
    EXPECT_FALSE(Access::IsFileOpen(m_output));
    SetPath(m_path);
    EXPECT_EQ(MessagesAround([] {}).size(), 2u);
}

TEST_F(FileFailures, AWaitThatTakesTooLongCostsTheLine) {
    std::vector<DWORD> waits;
    const CallSpy<&WindowsCalls::waitForSingleObject> wait(FileWait(WAIT_TIMEOUT, waits));
    const CallSpy<&WindowsCalls::releaseMutex> release;
    m_output.Write(1, 0, "lost");
    EXPECT_EQ(waits, (std::vector<DWORD>{5000, 5000, 5000}));
    EXPECT_EQ(release.Calls(), 2) << "a mutex that is not owned is not given back";
    EXPECT_EQ(m_trace.Texts(), Texts{WaitFailure()});
    EXPECT_EQ(MessagesAround([] {}).size(), 2u);
}

TEST_F(FileFailures, AWaitThatFailsCostsTheLine) {
    std::vector<DWORD> waits;
    const CallSpy<&WindowsCalls::waitForSingleObject> wait(FileWait(WAIT_FAILED, waits));
    const CallSpy<&WindowsCalls::releaseMutex> release;
    m_output.Write(1, 0, "lost");
    EXPECT_EQ(release.Calls(), 2);
    EXPECT_EQ(m_trace.Texts(), Texts{WaitFailure()});
    EXPECT_EQ(MessagesAround([] {}).size(), 2u);
}

TEST_F(FileFailures, AnAbandonedMutexCostsTheLineAndIsGivenBack) {
    std::thread([&] {  // ends without giving it back
        const LOGUTILS::KernelObject mutex(
            OpenMutexW(SYNCHRONIZE, FALSE, LOGUTILS::FileMutexName(m_path).c_str()));
        EXPECT_EQ(WaitForSingleObject(mutex.Get(), INFINITE), static_cast<DWORD>(WAIT_OBJECT_0));
    })
        .join();
    m_output.Write(1, 0, "lost");
    EXPECT_EQ(m_trace.Texts(), Texts{WaitFailure()});
    std::thread([&] {
        const auto mutex = LOGUTILS::NamedMutex::Open(LOGUTILS::FileMutexName(m_path));
        EXPECT_EQ(mutex.Wait(0).Wait(), LOGUTILS::MutexWait::Owned);
    }).join();
    EXPECT_EQ(MessagesAround([] {}).size(), 2u);
    EXPECT_EQ(m_trace.Texts().size(), 1u);
}

TEST_F(FileFailures, ASeekThatFailsSkipsTheLine) {
    {
        const CallSpy<&WindowsCalls::setFilePointer> seek([](auto...) {
            SetLastError(ERROR_SEEK);
            return FALSE;
        });
        const CallSpy<&WindowsCalls::writeFile> write;
        m_output.Write(1, 0, "lost");
        EXPECT_EQ(seek.Calls(), 1);
        EXPECT_EQ(write.Calls(), 0);
    }
    EXPECT_EQ(m_trace.Texts(), Texts{Failure(L"Failed to SetFilePointer.", ERROR_SEEK)});
    EXPECT_EQ(MessagesAround([] {}).size(), 2u);
}

TEST_F(FileFailures, APrefixThatIsNotWrittenDoesNotStopTheRest) {
    EXPECT_EQ(LineWithoutPart(1), L"message" + UnversionedTag() + L"\r\n");
    EXPECT_EQ(m_trace.Texts(), Texts{Failure(L"Failed to Write log header.", ERROR_DISK_FULL)});
}

TEST_F(FileFailures, AMessageThatIsNotWrittenDoesNotStopTheRest) {
    EXPECT_EQ(WithoutTime(LineWithoutPart(2)), PrefixWithoutTime(1) + UnversionedTag() + L"\r\n");
    EXPECT_EQ(m_trace.Texts(), Texts{Failure(L"Failed to Write log message.", ERROR_DISK_FULL)});
}

TEST_F(FileFailures, ATagThatIsNotWrittenDoesNotStopTheRest) {
    EXPECT_EQ(WithoutTime(LineWithoutPart(3)), PrefixWithoutTime(1) + L"message\r\n");
    EXPECT_EQ(m_trace.Texts(), Texts{Failure(L"Failed to Write log tail.", ERROR_DISK_FULL)});
}

TEST_F(FileFailures, ALineEndThatIsNotWrittenIsTold) {
    EXPECT_EQ(WithoutTime(LineWithoutPart(4)),
              PrefixWithoutTime(1) + L"message" + UnversionedTag());
    EXPECT_EQ(m_trace.Texts(), Texts{Failure(L"Failed to Write [rn].", ERROR_DISK_FULL)});
}

TEST_F(FileFailures, TracesOfAnAnsiFileSaySo) {
    SetPath(PathOf(L"ansi.Log"));
    WriteBytes(PathOf(L"ansi.Log"), "old\r\n");
    const CallSpy<&WindowsCalls::writeFile> write([](auto...) {
        SetLastError(ERROR_DISK_FULL);
        return FALSE;
    });
    m_output.Write(1, 0, "lost");
    ASSERT_EQ(m_trace.Texts().size(), 4u);
    EXPECT_EQ(m_trace.Texts().at(0), TracePrefix() +
                                         L"Failed to Write log header. ERR=112, [0]File=" +
                                         PathOf(L"ansi.Log") + L"\r\n");
}

TEST_F(FileFailures, AMarkThatIsNotWrittenDoesNotStopTheHeader) {
    SetPath(PathOf(L"b.Log"));
    const CallSpy<&WindowsCalls::writeFile> write([&](HANDLE hFile, const void* pBytes,
                                                      DWORD dwSize, DWORD* pdwWritten,
                                                      OVERLAPPED* pOverlapped) {
        return write.Calls() == 1 ? FALSE
                                  : write.Real(hFile, pBytes, dwSize, pdwWritten, pOverlapped);
    });
    m_output.Write(1, 0, "first");
    EXPECT_EQ(LinesIn(TextOfUtf16(BytesOf(PathOf(L"b.Log")))).size(), 8u);
}

TEST_F(FileFailures, TheMarkIsFlushedAndAFailureToDoSoIgnored) {
    SetPath(PathOf(L"b.Log"));
    const CallSpy<&WindowsCalls::flushFileBuffers> flush([&](HANDLE) {
        EXPECT_EQ(BytesOf(PathOf(L"b.Log")), LOGUTILS::kByteOrderMark);
        return FALSE;
    });
    m_output.Write(1, 0, "first");
    m_output.Write(1, 0, "second");
    EXPECT_EQ(flush.Calls(), 1);
    EXPECT_EQ(MessagesOf(PathOf(L"b.Log")).size(), 2u);
}

TEST_F(FileFailures, AFileThatDoesNotTellItsSizeIsNeitherRotatedNorBegunAnew) {
    {
        const CallSpy<&WindowsCalls::getFileSizeEx> size([](HANDLE, LARGE_INTEGER*) {
            SetLastError(ERROR_GEN_FAILURE);
            return FALSE;
        });
        m_output.Write(1, 0, "in between");
    }
    EXPECT_EQ(MessagesAround([] {}).size(), 3u);
    EXPECT_EQ(m_folder.Names().size(), 1u);
}

TEST_F(FileFailures, AFileWhoseBeginningCannotBeReadKeepsTheEncodingOfTheOutput) {
    {
        const CallSpy<&WindowsCalls::readFile> read([](auto...) { return FALSE; });
        m_output.Write(1, 0, "in between");
    }
    EXPECT_EQ(MessagesAround([] {}).size(), 3u);
}

TEST_F(FileFailures, ManyThreadsAndOutputsTearNoLine) {
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    CFileOutput other;
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < kThreads; ++nThread) {
        threads.emplace_back([&, nThread] {
            CFileOutput& output = nThread % 2 == 0 ? m_output : other;
            for (int nLine = 0; nLine < kLines; ++nLine) {
                const std::string text =
                    "<" + std::to_string(nThread) + ":" + std::to_string(nLine) + ">";
                if (nLine % 2 == 0) {
                    output.Write(1, 0, text.c_str());
                } else {
                    output.Write(1, 0, std::wstring(text.begin(), text.end()).c_str());
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const Texts lines = MessagesOf(m_path);
    EXPECT_EQ(lines.size(), 1u + kThreads * kLines);
    for (const std::wstring& line : lines) {
        EXPECT_EQ(line.find(L'['), 0u);
        EXPECT_EQ(line.rfind(UnversionedTag()), line.size() - UnversionedTag().size());
    }
    for (int nThread = 0; nThread < kThreads; ++nThread) {
        for (int nLine = 0; nLine < kLines; ++nLine) {
            EXPECT_EQ(CountContaining(lines, L"] <" + std::to_wstring(nThread) + L":" +
                                                 std::to_wstring(nLine) + L">   {"),
                      1u);
        }
    }
}

}  // namespace
}  // namespace Mirqos::Test
