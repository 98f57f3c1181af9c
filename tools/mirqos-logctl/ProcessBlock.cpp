#include "tools/mirqos-logctl/ProcessBlock.h"

#include <string>

#include "log/dbg/win32/SharedMemory.h"
#include "tools/mirqos-logctl/Failure.h"

namespace Mirqos::LogControl {

using LOGUTILS::LogConfigBlock;
using LOGUTILS::MutexWait;
using LOGUTILS::WideString;

namespace {

constexpr DWORD kWaitMilliseconds = 5000;

WideString NameOf(const char* beginning, std::uint32_t processId) {
    return LOGUTILS::WidenAscii(beginning) + LOGUTILS::Decimal(processId);
}

LOGUTILS::SharedMemory OpenBlock(std::uint32_t processId) {
    return LOGUTILS::OpenSharedMemory(NameOf(LOGUTILS::kBlockName, processId));
}

std::string Whose(std::uint32_t processId) {
    return "the log configuration block of process " + std::to_string(processId);
}

[[noreturn]] void Refuse(const std::string& what) {
    const DWORD error = GetLastError();
    throw Failure(ExitCode::SystemRefused, what + " (system error " + std::to_string(error) + ")");
}

}  // namespace

bool HasBlock(std::uint32_t processId) {
    return static_cast<bool>(OpenBlock(processId).m_mapping);
}

// The view keeps the memory alive once its mapping is closed.
ProcessBlock::ProcessBlock(std::uint32_t processId) : m_processId(processId) {
    const LOGUTILS::SharedMemory memory = OpenBlock(processId);
    if (!memory.m_mapping && GetLastError() == ERROR_FILE_NOT_FOUND) {
        throw Failure(ExitCode::NoBlock,
                      "process " + std::to_string(processId) + " has no log configuration block");
    }
    if (!memory.m_mapping) {
        Refuse(Whose(processId) + " cannot be opened");
    }
    m_view = LOGUTILS::MapSharedMemory(memory.m_mapping, sizeof(LogConfigBlock));
    if (!m_view) {
        Refuse(Whose(processId) + " cannot be mapped");
    }
    m_mutex = LOGUTILS::NamedMutex::Open(NameOf(LOGUTILS::kBlockMutexName, processId));
    if (!m_mutex) {
        Refuse("the mutex of " + Whose(processId) + " cannot be opened");
    }
}

void ProcessBlock::Hold(const std::function<void(LogConfigBlock&)>& work) const {
    const LOGUTILS::MutexHold hold = m_mutex.Wait(kWaitMilliseconds);
    switch (hold.Wait()) {
        case MutexWait::Owned:
        case MutexWait::Abandoned:
            break;
        case MutexWait::TimedOut:
            throw Failure(ExitCode::Busy,
                          Whose(m_processId) + " is in use: its mutex was not free within " +
                              std::to_string(kWaitMilliseconds / 1000) + " seconds");
        case MutexWait::Failed:
            Refuse("the mutex of " + Whose(m_processId) + " cannot be waited for");
    }
    LogConfigBlock& block = *static_cast<LogConfigBlock*>(m_view.Get());
    if (!LOGUTILS::IsIntact(block)) {
        throw Failure(ExitCode::Damaged,
                      Whose(m_processId) + " is damaged: its magic numbers were overwritten");
    }
    work(block);
}

}  // namespace Mirqos::LogControl
