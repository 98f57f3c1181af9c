#include "log/dbg/win32/FolderPreparation.h"

#include <windows.h>

#include <winioctl.h>

#include <cstddef>
#include <cstdio>
#include <optional>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/Owned.h"
#include "log/dbg/win32/Trace.h"
#include "log/dbg/win32/WindowsCalls.h"
#include "platform/process.h"

namespace LOGUTILS {
namespace {

// Read, write, execute and delete, but neither change permissions nor owner.
constexpr DWORD kServiceAccess = 0x1301BF;

bool HasAttribute(const WideString& folder, DWORD dwAttribute) {
    const DWORD dwAttributes = Windows().getFileAttributes(folder.c_str());
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & dwAttribute) != 0;
}

bool MakeFolder(const WideString& folder) {
    if (folder.empty()) {
        return false;
    }
    if (Windows().createDirectory(folder.c_str(), nullptr)) {
        return true;
    }
    if (GetLastError() == ERROR_PATH_NOT_FOUND && MakeFolder(WideString(FolderOf(folder))) &&
        Windows().createDirectory(folder.c_str(), nullptr)) {
        return true;
    }
    // It was there, or somebody else made it meanwhile.
    return HasAttribute(folder, FILE_ATTRIBUTE_DIRECTORY);
}

/// The account "S-1-5-19".
class LocalService {
public:
    LocalService() {
        DWORD dwSize = sizeof(m_sid);
        CreateWellKnownSid(WinLocalServiceSid, nullptr, m_sid, &dwSize);
    }
    LocalService(const LocalService&) = delete;
    LocalService& operator=(const LocalService&) = delete;

    bool IsTrusteeOf(const EXPLICIT_ACCESS_W& entry) {
        return entry.Trustee.TrusteeForm == TRUSTEE_IS_SID &&
               EqualSid(entry.Trustee.ptstrName, m_sid);
    }
    /// The grant for a folder and all below it; refers to this object.
    EXPLICIT_ACCESS_W Grant() {
        EXPLICIT_ACCESS_W grant = {};
        grant.grfAccessPermissions = kServiceAccess;
        grant.grfAccessMode = GRANT_ACCESS;
        grant.grfInheritance = SUB_CONTAINERS_AND_OBJECTS_INHERIT;
        grant.Trustee.TrusteeForm = TRUSTEE_IS_SID;
        grant.Trustee.TrusteeType = TRUSTEE_IS_WELL_KNOWN_GROUP;
        grant.Trustee.ptstrName = reinterpret_cast<LPWSTR>(m_sid);
        return grant;
    }

private:
    alignas(SID) BYTE m_sid[SECURITY_MAX_SID_SIZE] = {};
};

bool IsGranted(ACL* pAcl, LocalService& account) {
    ULONG nEntries = 0;
    EXPLICIT_ACCESS_W* pEntries = nullptr;
    if (GetExplicitEntriesFromAclW(pAcl, &nEntries, &pEntries) != ERROR_SUCCESS) {
        return false;
    }
    const LocalMemory memory(pEntries);
    for (ULONG n = 0; n < nEntries; ++n) {
        if (account.IsTrusteeOf(pEntries[n]) &&
            (pEntries[n].grfAccessPermissions & kServiceAccess) == kServiceAccess) {
            return true;
        }
    }
    return false;
}

// Which of the calls failed, and how; nothing when the account has its access.
struct GrantFailure {
    const char* m_pszFormat;
    DWORD m_dwError;
};

std::optional<GrantFailure> GrantLocalService(const WideString& folder) {
    WideString name = folder;  // the calls take a text that they might change
    ACL* pAcl = nullptr;
    PSECURITY_DESCRIPTOR pDescriptor = nullptr;
    DWORD dwError =
        Windows().getNamedSecurityInfo(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                       nullptr, nullptr, &pAcl, nullptr, &pDescriptor);
    if (dwError != ERROR_SUCCESS) {
        return GrantFailure{"GetNamedSecurityInfo Error %u\n", dwError};
    }
    const LocalMemory descriptor(pDescriptor);
    LocalService account;
    // Without a list everyone may do everything; a list of one entry would lock the others out.
    if (pAcl == nullptr || IsGranted(pAcl, account)) {
        return std::nullopt;
    }
    EXPLICIT_ACCESS_W grant = account.Grant();
    ACL* pMerged = nullptr;
    dwError = Windows().setEntriesInAcl(1, &grant, pAcl, &pMerged);
    if (dwError != ERROR_SUCCESS) {
        return GrantFailure{"SetEntriesInAcl Error %u\n", dwError};
    }
    const LocalMemory merged(pMerged);
    dwError = Windows().setNamedSecurityInfo(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                             nullptr, nullptr, pMerged, nullptr);
    if (dwError != ERROR_SUCCESS) {
        return GrantFailure{"SetNamedSecurityInfo Error %u\n", dwError};
    }
    return std::nullopt;
}

void GrantOrTell(const WideString& folder) {
    const std::optional<GrantFailure> failure = GrantLocalService(folder);
    if (failure) {
        std::printf(failure->m_pszFormat, static_cast<unsigned>(failure->m_dwError));
        Trace(L"[%d:%d] Failed to add local service access right for folder %s\r\n",
              Mirqos::CurrentProcessId(), Mirqos::CurrentThreadId(), folder.c_str());
    }
}

bool IsRoot(WideView folder, WideView logRoot) {
    return logRoot.size() == folder.size() + 1 && BeginsWithIgnoringCase(logRoot, folder);
}

void Compress(const WideString& folder) {
    const File handle(Windows().createFile(folder.c_str(), GENERIC_READ | GENERIC_WRITE,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (handle) {
        USHORT nFormat = COMPRESSION_FORMAT_DEFAULT;
        DWORD dwReturned = 0;
        Windows().deviceIoControl(handle.Get(), FSCTL_SET_COMPRESSION, &nFormat, sizeof(nFormat),
                                  nullptr, 0, &dwReturned, nullptr);
    }
}

}  // namespace

void PrepareLogFolder(const WideString& folder, WideView logRoot) {
    if (!MakeFolder(folder)) {
        return;
    }
    GrantOrTell(folder);
    // Only the root: a log that was configured to go elsewhere must not compress what is there.
    if (IsRoot(folder, logRoot) && !HasAttribute(folder, FILE_ATTRIBUTE_COMPRESSED)) {
        Compress(folder);
    }
}

}  // namespace LOGUTILS
