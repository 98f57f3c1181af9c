#include "log/dbg/win32/SharedMemory.h"

#include "log/dbg/win32/OpenToEveryone.h"
#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {
namespace {

SharedMemory CreateAs(const WideString& fullName, DWORD dwSize) {
    OpenToEveryone security;
    KernelObject mapping(Windows().createFileMapping(INVALID_HANDLE_VALUE, security.Attributes(),
                                                     PAGE_READWRITE, 0, dwSize, fullName.c_str()));
    const bool bExisted = GetLastError() == ERROR_ALREADY_EXISTS;
    return {std::move(mapping), bExisted};
}

KernelObject OpenAs(const WideString& fullName) {
    return KernelObject(Windows().openFileMapping(FILE_MAP_ALL_ACCESS, FALSE, fullName.c_str()));
}

}  // namespace

SharedMemory CreateSharedMemory(const WideString& name, DWORD dwSize) {
    SharedMemory memory = CreateAs(L"Global\\" + name, dwSize);
    if (!memory.m_mapping && GetLastError() == ERROR_ACCESS_DENIED) {
        memory = CreateAs(L"Local\\" + name, dwSize);
    }
    return memory;
}

SharedMemory OpenSharedMemory(const WideString& name) {
    KernelObject mapping = OpenAs(L"Global\\" + name);
    if (!mapping) {
        mapping = OpenAs(L"Local\\" + name);
    }
    return {std::move(mapping), true};
}

View MapSharedMemory(const KernelObject& mapping, SIZE_T nSize) {
    return View(Windows().mapViewOfFile(mapping.Get(), FILE_MAP_ALL_ACCESS, 0, 0, nSize));
}

}  // namespace LOGUTILS
