#include <gtest/gtest.h>

#include <windows.h>

#include <sddl.h>
#include <winioctl.h>

#include <string>
#include <vector>

#include "log/dbg/win32/FolderPreparation.h"
#include "log/dbg/win32/Owned.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/LogFolder.h"
#include "tests/support/win32/TraceRecording.h"

namespace Mirqos::Test {
namespace {

using LOGUTILS::PrepareLogFolder;
using LOGUTILS::WindowsCalls;

constexpr DWORD kServiceAccess = 0x1301BF;
constexpr wchar_t kElsewhere[] = L"C:\\elsewhere\\Logs\\";

/// The folder of a log file before the file is opened.
class FolderPreparation : public testing::Test {
protected:
    /// The text that `work` prints to the standard output.
    template <typename Work>
    static std::string Printed(Work work) {
        testing::internal::CaptureStdout();
        work();
        return testing::internal::GetCapturedStdout();
    }
    std::wstring GrantFailure() const {
        return TracePrefix() + L"Failed to add local service access right for folder " +
               m_folder.Path() + L"\r\n";
    }

    const LogFolder m_folder;
    const TraceRecording m_trace;
};

TEST_F(FolderPreparation, MissingParentsAreMadeFirst) {
    const std::wstring folder = m_folder.PathOf(L"one\\two\\three");
    PrepareLogFolder(folder, kElsewhere);
    EXPECT_TRUE(Exists(folder));
    PrepareLogFolder(folder, kElsewhere);
    EXPECT_TRUE(m_trace.Texts().empty());
}

TEST_F(FolderPreparation, AFolderThatCannotBeMadeIsLeftAtThat) {
    WriteBytes(m_folder.PathOf(L"file"), "in the way");
    const CallSpy<&WindowsCalls::getNamedSecurityInfo> security;
    const CallSpy<&WindowsCalls::createFile> createFile;
    for (const std::wstring folder : {L"file", L"file\\below", L"file\\below\\further"}) {
        PrepareLogFolder(m_folder.PathOf(folder), m_folder.PathOf(folder) + L"\\");
    }
    PrepareLogFolder(L"", L"\\");
    EXPECT_EQ(security.Calls(), 0);
    EXPECT_EQ(createFile.Calls(), 0);
    EXPECT_TRUE(m_trace.Texts().empty());
}

TEST_F(FolderPreparation, AFolderThatSomebodyElseMakesMeanwhileCounts) {
    const std::wstring folder = m_folder.PathOf(L"new");
    const CallSpy<&WindowsCalls::createDirectory> createDirectory(
        [&](const wchar_t* pszPath, SECURITY_ATTRIBUTES* pSecurity) {
            createDirectory.Real(pszPath, pSecurity);
            return createDirectory.Real(pszPath, pSecurity);
        });
    const CallSpy<&WindowsCalls::getNamedSecurityInfo> security;
    PrepareLogFolder(folder, kElsewhere);
    EXPECT_EQ(security.Calls(), 1);
}

TEST_F(FolderPreparation, TheRootOfADriveCounts) {
    const CallSpy<&WindowsCalls::getNamedSecurityInfo> security(
        [](auto...) { return DWORD{ERROR_ACCESS_DENIED}; });
    EXPECT_NE(Printed([] { PrepareLogFolder(L"C:", kElsewhere); }), "");
    EXPECT_EQ(security.Calls(), 1);
}

TEST_F(FolderPreparation, LocalServiceIsGrantedItsAccessBesideWhatTheListHad) {
    std::vector<std::wstring> merged;
    const CallSpy<&WindowsCalls::setEntriesInAcl> entries(
        [&](ULONG nEntries, EXPLICIT_ACCESS_W* pEntries, ACL* pOld, ACL** ppNew) {
            EXPECT_EQ(nEntries, 1u);
            EXPECT_NE(pOld, nullptr);
            EXPECT_EQ(pEntries->grfAccessMode, GRANT_ACCESS);
            EXPECT_EQ(pEntries->grfAccessPermissions, kServiceAccess);
            EXPECT_EQ(pEntries->grfInheritance,
                      static_cast<DWORD>(SUB_CONTAINERS_AND_OBJECTS_INHERIT));
            EXPECT_EQ(pEntries->Trustee.TrusteeForm, TRUSTEE_IS_SID);
            wchar_t* pszSid = nullptr;
            EXPECT_TRUE(ConvertSidToStringSidW(pEntries->Trustee.ptstrName, &pszSid));
            EXPECT_EQ(std::wstring(pszSid), L"S-1-5-19");
            LocalFree(pszSid);
            return entries.Real(nEntries, pEntries, pOld, ppNew);
        });
    const CallSpy<&WindowsCalls::setNamedSecurityInfo> set(
        [&](wchar_t* pszName, SE_OBJECT_TYPE kind, SECURITY_INFORMATION what, void* pOwner,
            void* pGroup, ACL* pList, ACL* pAudit) {
            EXPECT_EQ(pszName, m_folder.Path());
            EXPECT_EQ(kind, SE_FILE_OBJECT);
            EXPECT_EQ(what, static_cast<SECURITY_INFORMATION>(DACL_SECURITY_INFORMATION));
            EXPECT_EQ(pOwner, nullptr);
            EXPECT_EQ(pGroup, nullptr);
            EXPECT_EQ(pAudit, nullptr);
            ULONG nEntries = 0;
            EXPLICIT_ACCESS_W* pEntries = nullptr;
            EXPECT_EQ(GetExplicitEntriesFromAclW(pList, &nEntries, &pEntries), DWORD{0});
            for (ULONG n = 0; n < nEntries; ++n) {
                wchar_t* pszSid = nullptr;
                EXPECT_TRUE(ConvertSidToStringSidW(pEntries[n].Trustee.ptstrName, &pszSid));
                merged.emplace_back(pszSid);
                LocalFree(pszSid);
            }
            LocalFree(pEntries);
            return set.Real(pszName, kind, what, pOwner, pGroup, pList, pAudit);
        });
    PrepareLogFolder(m_folder.Path(), kElsewhere);
    EXPECT_EQ(entries.Calls(), 1);
    EXPECT_EQ(set.Calls(), 1);
    EXPECT_EQ(CountContaining(merged, L"S-1-5-19"), 1u);
    EXPECT_GT(merged.size(), 1u) << "what others may do is kept";
    EXPECT_TRUE(m_trace.Texts().empty());
}

/// Lets the folder have the access list of this text.
class FolderWithList {
public:
    explicit FolderWithList(const wchar_t* pszList)
        : m_security([pszList](auto, SE_OBJECT_TYPE, SECURITY_INFORMATION, void**, void**,
                               ACL** ppList, ACL**, void** ppDescriptor) {
              EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(
                  pszList, SDDL_REVISION_1, ppDescriptor, nullptr));
              BOOL bPresent = FALSE;
              BOOL bDefaulted = FALSE;
              EXPECT_TRUE(GetSecurityDescriptorDacl(*ppDescriptor, &bPresent, ppList, &bDefaulted));
              return DWORD{ERROR_SUCCESS};
          }) {}

    /// Whether a preparation of the folder grants anything.
    bool IsGranted(const std::wstring& folder) const {
        const CallSpy<&WindowsCalls::setNamedSecurityInfo> set(
            [](auto...) { return DWORD{ERROR_SUCCESS}; });
        PrepareLogFolder(folder, kElsewhere);
        return set.Calls() == 1;
    }

private:
    CallSpy<&WindowsCalls::getNamedSecurityInfo> m_security;
};

TEST_F(FolderPreparation, NothingIsGrantedWhereTheAccessIsAlreadyThere) {
    for (const wchar_t* pszList : {L"D:(A;OICI;0x1301bf;;;S-1-5-19)", L"D:(A;;0x1f01ff;;;S-1-5-19)",
                                   L"D:(A;;0x1200a9;;;WD)(A;ID;0x1301bf;;;S-1-5-19)"}) {
        EXPECT_FALSE(FolderWithList(pszList).IsGranted(m_folder.Path())) << pszList;
    }
}

TEST_F(FolderPreparation, LessAccessOrThatOfOthersIsNotEnough) {
    for (const wchar_t* pszList : {L"D:", L"D:(A;OICI;0x1301be;;;S-1-5-19)",
                                   L"D:(A;OICI;0x1f01ff;;;S-1-5-20)(A;;0x1f01ff;;;WD)"}) {
        EXPECT_TRUE(FolderWithList(pszList).IsGranted(m_folder.Path())) << pszList;
    }
}

TEST_F(FolderPreparation, AFolderWithoutAListIsOpenToEveryoneAndStaysSo) {
    EXPECT_FALSE(FolderWithList(L"O:WD").IsGranted(m_folder.Path()));
}

TEST_F(FolderPreparation, ASecurityListThatCannotBeReadIsTold) {
    const CallSpy<&WindowsCalls::getNamedSecurityInfo> failing(
        [](auto...) { return DWORD{ERROR_ACCESS_DENIED}; });
    EXPECT_EQ(Printed([&] { PrepareLogFolder(m_folder.Path(), kElsewhere); }),
              "GetNamedSecurityInfo Error 5\n");
    EXPECT_EQ(m_trace.Texts(), std::vector<std::wstring>{GrantFailure()});
}

TEST_F(FolderPreparation, AGrantThatCannotBeMergedIsTold) {
    const CallSpy<&WindowsCalls::setEntriesInAcl> failing(
        [](auto...) { return DWORD{ERROR_INVALID_PARAMETER}; });
    EXPECT_EQ(Printed([&] { PrepareLogFolder(m_folder.Path(), kElsewhere); }),
              "SetEntriesInAcl Error 87\n");
    EXPECT_EQ(m_trace.Texts(), std::vector<std::wstring>{GrantFailure()});
}

TEST_F(FolderPreparation, AListThatCannotBeWrittenBackIsTold) {
    const CallSpy<&WindowsCalls::setNamedSecurityInfo> failing(
        [](auto...) { return DWORD{ERROR_ACCESS_DENIED}; });
    EXPECT_EQ(Printed([&] { PrepareLogFolder(m_folder.Path(), kElsewhere); }),
              "SetNamedSecurityInfo Error 5\n");
    EXPECT_EQ(m_trace.Texts(), std::vector<std::wstring>{GrantFailure()});
}

/// Whether a preparation asks for the folder's compression.
class Compression : public FolderPreparation {
protected:
    bool IsAskedFor(const std::wstring& folder, const std::wstring& root) {
        const CallSpy<&WindowsCalls::createFile> open(
            [&](const wchar_t* pszPath, DWORD dwAccess, DWORD dwShare,
                SECURITY_ATTRIBUTES* pSecurity, DWORD dwDisposition, DWORD dwFlags,
                HANDLE hTemplate) {
                EXPECT_EQ(pszPath, folder);
                EXPECT_EQ(dwDisposition, static_cast<DWORD>(OPEN_EXISTING));
                EXPECT_EQ(dwFlags, static_cast<DWORD>(FILE_FLAG_BACKUP_SEMANTICS));
                return open.Real(pszPath, dwAccess, dwShare, pSecurity, dwDisposition, dwFlags,
                                 hTemplate);
            });
        const CallSpy<&WindowsCalls::deviceIoControl> control(
            [](HANDLE, DWORD dwCode, void* pIn, DWORD dwSize, void*, DWORD, DWORD*, OVERLAPPED*) {
                EXPECT_EQ(dwCode, static_cast<DWORD>(FSCTL_SET_COMPRESSION));
                EXPECT_EQ(dwSize, sizeof(USHORT));
                EXPECT_EQ(*static_cast<USHORT*>(pIn), COMPRESSION_FORMAT_DEFAULT);
                return FALSE;
            });
        PrepareLogFolder(folder, root);
        EXPECT_EQ(open.Calls(), control.Calls());
        EXPECT_TRUE(m_trace.Texts().empty()) << "a failure is ignored";
        return control.Calls() == 1;
    }
};

TEST_F(Compression, IsAskedForTheLogRootInAnyLetterCase) {
    const std::wstring root = m_folder.PathOf(L"Logs");
    EXPECT_TRUE(IsAskedFor(root, root + L"\\"));
    EXPECT_TRUE(IsAskedFor(m_folder.PathOf(L"LOGS"), root + L"\\"));
}

TEST_F(Compression, IsNotAskedForAnyOtherFolder) {
    const std::wstring root = m_folder.PathOf(L"Logs");
    EXPECT_FALSE(IsAskedFor(m_folder.Path(), root + L"\\")) << "above the root";
    EXPECT_FALSE(IsAskedFor(m_folder.PathOf(L"Log"), root + L"\\")) << "a part of its name";
    EXPECT_FALSE(IsAskedFor(root + L"\\below", root + L"\\"));
    EXPECT_FALSE(IsAskedFor(m_folder.PathOf(L"other"), root + L"\\"));
}

TEST_F(Compression, IsNotAskedForAFolderThatHasIt) {
    const CallSpy<&WindowsCalls::getFileAttributes> attributes([](const wchar_t*) {
        return static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_COMPRESSED);
    });
    EXPECT_FALSE(IsAskedFor(m_folder.Path(), m_folder.Path() + L"\\"));
}

TEST_F(Compression, IsGivenUpWhenTheFolderCannotBeOpened) {
    const CallSpy<&WindowsCalls::createFile> open([](auto...) { return INVALID_HANDLE_VALUE; });
    const CallSpy<&WindowsCalls::deviceIoControl> control;
    PrepareLogFolder(m_folder.Path(), m_folder.Path() + L"\\");
    EXPECT_EQ(open.Calls(), 1);
    EXPECT_EQ(control.Calls(), 0);
}

}  // namespace
}  // namespace Mirqos::Test
