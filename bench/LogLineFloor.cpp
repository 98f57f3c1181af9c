#include "bench/LogLineFloor.h"

#include <algorithm>

namespace Mirqos::Bench {
namespace {

constexpr DWORD kWait = 5000;  // ms

// As long as the parts of the line that is measured, in UTF-16.
constexpr char kPrefix[2 * 60] = {};
constexpr char kMessage[2 * 60] = {};
constexpr char kTag[2 * 50] = {};
constexpr char kEnd[2 * 2] = {};

template <std::size_t kSize>
void Put(HANDLE hFile, const char (&bytes)[kSize]) {
    DWORD dwWritten = 0;
    WriteFile(hFile, bytes, kSize, &dwWritten, nullptr);
}

std::wstring MutexName(std::wstring path) {
    std::replace(path.begin(), path.end(), L'\\', L'/');
    return L"Global\\" + path + L".floor";
}

}  // namespace

LogLineFloor::LogLineFloor(const std::wstring& path)
    : m_configMutex(CreateMutexW(nullptr, FALSE, nullptr)),
      m_fileMutex(CreateMutexW(nullptr, FALSE, MutexName(path).c_str())),
      m_file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                         FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {
}

void LogLineFloor::QueryLevel() const {
    WaitForSingleObject(m_configMutex.Get(), kWait);
    ReleaseMutex(m_configMutex.Get());
}

void LogLineFloor::WriteLine() const {
    QueryLevel();
    WaitForSingleObject(m_configMutex.Get(), kWait);  // for the path
    ReleaseMutex(m_configMutex.Get());
    LARGE_INTEGER size = {};
    GetFileSizeEx(m_file.Get(), &size);
    WaitForSingleObject(m_fileMutex.Get(), kWait);
    GetFileSizeEx(m_file.Get(), &size);
    OVERLAPPED start = {};
    char beginning[2] = {};
    DWORD dwRead = 0;
    ReadFile(m_file.Get(), beginning, sizeof(beginning), &dwRead, &start);
    SetFilePointerEx(m_file.Get(), LARGE_INTEGER{}, nullptr, FILE_END);
    Put(m_file.Get(), kPrefix);
    Put(m_file.Get(), kMessage);
    Put(m_file.Get(), kTag);
    Put(m_file.Get(), kEnd);
    ReleaseMutex(m_fileMutex.Get());
}

}  // namespace Mirqos::Bench
