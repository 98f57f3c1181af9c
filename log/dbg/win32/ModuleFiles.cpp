#include "log/dbg/win32/ModuleFiles.h"

#include <windows.h>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/WindowsCalls.h"
#include "platform/undo_windows_macros.h"

namespace LOGUTILS {
namespace {

WideString PathOfModule(HMODULE hModule) {
    constexpr DWORD kMostCharacters = 32767;  // of any path of Windows
    WideString path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD dwLength =
            Windows().getModuleFileName(hModule, path.data(), static_cast<DWORD>(path.size()));
        if (dwLength < path.size()) {
            path.resize(dwLength);
            return path;
        }
        if (path.size() >= kMostCharacters) {
            return {};
        }
        path.resize(path.size() * 2);
    }
}

HMODULE ThisLibrary() {
    static const char anchor = 0;
    HMODULE hModule = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&anchor), &hModule);
    return hModule;
}

}  // namespace

WideString LibraryPath() {
    return PathOfModule(ThisLibrary());
}

WideString ExecutablePath() {
    return PathOfModule(nullptr);
}

WideString LibraryName() {
    return WideString(FileNameOf(LibraryPath()));
}

WideString ExecutableName() {
    return WideString(FileNameOf(ExecutablePath()));
}

std::optional<FileVersion> VersionOfModule(const wchar_t* pszName) {
    const HMODULE hModule = GetModuleHandleW(pszName);
    if (hModule == nullptr) {
        return std::nullopt;
    }
    const HRSRC hResource = FindResourceW(hModule, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    if (hResource == nullptr) {
        return std::nullopt;
    }
    const HGLOBAL hLoaded = LoadResource(hModule, hResource);
    if (hLoaded == nullptr) {
        return std::nullopt;
    }
    return ReadFileVersion(
        {static_cast<const char*>(LockResource(hLoaded)), SizeofResource(hModule, hResource)});
}

}  // namespace LOGUTILS
