#include "log/dbg/win32/Registry.h"

#include <cstddef>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/Owned.h"
#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {
namespace {

constexpr std::size_t kMostCharacters = 1 << 16;  // far more than any of our values has

using IsWow64ProcessCall = BOOL(WINAPI*)(HANDLE hProcess, PBOOL pbIsWow64);

// Looked up while running: the first systems we ran on did not have it. Those have one view only.
bool RunsUnderWow64() {
    const FARPROC pCall = Windows().getProcAddress(GetModuleHandleW(L"kernel32"), "IsWow64Process");
    if (pCall == nullptr) {
        return false;
    }
    // through a plain function pointer, or compilers warn of the cast
    const auto isWow64Process =
        reinterpret_cast<IsWow64ProcessCall>(reinterpret_cast<void (*)()>(pCall));
    BOOL bIsWow64 = FALSE;
    return isWow64Process(GetCurrentProcess(), &bIsWow64) != FALSE && bIsWow64 != FALSE;
}

RegistryKey OpenForReading(const WideString& key) {
    const REGSAM access = KEY_READ | (RunsUnderWow64() ? KEY_WOW64_64KEY : 0U);
    HKEY hKey = nullptr;
    if (Windows().regOpenKey(HKEY_LOCAL_MACHINE, key.c_str(), 0, access, &hKey) != ERROR_SUCCESS) {
        return {};
    }
    return RegistryKey(hKey);
}

}  // namespace

bool RegistryKeyExists(const WideString& key) {
    return static_cast<bool>(OpenForReading(key));
}

std::optional<WideString> RegistryText(const WideString& key, const WideString& value) {
    const RegistryKey opened = OpenForReading(key);
    if (!opened) {
        return std::nullopt;
    }
    WideString text(kPathRoom, WideChar{});
    for (;;) {
        auto dwBytes = static_cast<DWORD>(text.size() * sizeof(WideChar));
        const LSTATUS status = RegGetValueW(opened.Get(), nullptr, value.c_str(), RRF_RT_REG_SZ,
                                            nullptr, text.data(), &dwBytes);
        if (status == ERROR_SUCCESS) {
            text.resize(text.find(WideChar{}));  // it is always terminated
            return text;
        }
        if (status != ERROR_MORE_DATA || text.size() >= kMostCharacters) {
            return std::nullopt;
        }
        text.resize(text.size() * 2);
    }
}

std::optional<std::uint32_t> RegistryNumber(const WideString& key, const WideString& value) {
    const RegistryKey opened = OpenForReading(key);
    if (!opened) {
        return std::nullopt;
    }
    DWORD dwNumber = 0;
    DWORD dwBytes = sizeof(dwNumber);
    if (RegGetValueW(opened.Get(), nullptr, value.c_str(), RRF_RT_REG_DWORD, nullptr, &dwNumber,
                     &dwBytes) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return dwNumber;
}

}  // namespace LOGUTILS
