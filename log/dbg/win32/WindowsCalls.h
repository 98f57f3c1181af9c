#pragma once

#include <windows.h>

#include <aclapi.h>
#include <rpc.h>

#include "platform/undo_windows_macros.h"

namespace LOGUTILS {

/// The calls to Windows that the logging library makes and that can fail, or are worth counting. A
/// test puts another function in the place of one for a while (CallSpy), to make it fail where
/// a machine would not.
struct WindowsCalls {
    decltype(&::CreateMutexW) createMutex = &::CreateMutexW;
    decltype(&::OpenMutexW) openMutex = &::OpenMutexW;
    decltype(&::ReleaseMutex) releaseMutex = &::ReleaseMutex;
    decltype(&::CreateEventW) createEvent = &::CreateEventW;
    decltype(&::OpenEventW) openEvent = &::OpenEventW;
    decltype(&::SetEvent) setEvent = &::SetEvent;
    decltype(&::WaitForSingleObject) waitForSingleObject = &::WaitForSingleObject;

    decltype(&::UuidCreate) uuidCreate = &::UuidCreate;

    // a process's objects are named after it
    decltype(&::GetCurrentProcessId) getCurrentProcessId = &::GetCurrentProcessId;
    decltype(&::GetModuleFileNameW) getModuleFileName = &::GetModuleFileNameW;

    decltype(&::CreateFileMappingW) createFileMapping = &::CreateFileMappingW;
    decltype(&::OpenFileMappingW) openFileMapping = &::OpenFileMappingW;
    decltype(&::MapViewOfFile) mapViewOfFile = &::MapViewOfFile;

    decltype(&::CreateFileW) createFile = &::CreateFileW;
    decltype(&::ReadFile) readFile = &::ReadFile;
    decltype(&::WriteFile) writeFile = &::WriteFile;
    decltype(&::SetFilePointerEx) setFilePointer = &::SetFilePointerEx;
    decltype(&::GetFileSizeEx) getFileSizeEx = &::GetFileSizeEx;
    decltype(&::FlushFileBuffers) flushFileBuffers = &::FlushFileBuffers;
    decltype(&::CreateDirectoryW) createDirectory = &::CreateDirectoryW;
    decltype(&::GetFileAttributesW) getFileAttributes = &::GetFileAttributesW;
    decltype(&::GetFileAttributesExW) getFileAttributesEx = &::GetFileAttributesExW;
    decltype(&::DeviceIoControl) deviceIoControl = &::DeviceIoControl;

    decltype(&::GetNamedSecurityInfoW) getNamedSecurityInfo = &::GetNamedSecurityInfoW;
    decltype(&::SetEntriesInAclW) setEntriesInAcl = &::SetEntriesInAclW;
    decltype(&::SetNamedSecurityInfoW) setNamedSecurityInfo = &::SetNamedSecurityInfoW;

    decltype(&::GetProcAddress) getProcAddress = &::GetProcAddress;
    decltype(&::RegOpenKeyExW) regOpenKey = &::RegOpenKeyExW;
    decltype(&::GetVersionExW) getVersion = &::GetVersionExW;
    decltype(&::GetComputerNameW) getComputerName = &::GetComputerNameW;
    decltype(&::GetNativeSystemInfo) getNativeSystemInfo = &::GetNativeSystemInfo;
};

/// The calls in use. Built on first use, so that it serves while the library is being loaded.
WindowsCalls& Windows();

}  // namespace LOGUTILS
