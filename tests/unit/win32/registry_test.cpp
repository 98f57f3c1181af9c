#include "log/dbg/win32/Registry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/PrivateRegistry.h"

namespace {

using LOGUTILS::RegistryKeyExists;
using LOGUTILS::RegistryNumber;
using LOGUTILS::RegistryText;
using LOGUTILS::WindowsCalls;
using Mirqos::Test::CallSpy;
using Mirqos::Test::PrivateRegistry;

constexpr wchar_t kKey[] = L"SOFTWARE\\Somebody\\Something";

class Registry : public testing::Test {
protected:
    PrivateRegistry m_registry;
};

TEST_F(Registry, KnowsWhichKeysThereAre) {
    m_registry.AddKey(kKey);
    EXPECT_TRUE(RegistryKeyExists(kKey));
    EXPECT_TRUE(RegistryKeyExists(L"software\\somebody"));
    EXPECT_FALSE(RegistryKeyExists(L"SOFTWARE\\Nobody"));
}

TEST_F(Registry, DeliversTextsAndNumbers) {
    m_registry.SetText(kKey, L"Text", L"one two");
    m_registry.SetText(kKey, L"Empty", L"");
    m_registry.SetNumber(kKey, L"Number", 0xFFFFFFFFu);
    EXPECT_EQ(RegistryText(kKey, L"text"), L"one two");
    EXPECT_EQ(RegistryText(kKey, L"Empty"), L"");
    EXPECT_EQ(RegistryNumber(kKey, L"NUMBER"), 0xFFFFFFFFu);
}

TEST_F(Registry, DeliversALongTextWhole) {
    const std::wstring text(20000, L'x');
    m_registry.SetText(kKey, L"Text", text);
    EXPECT_EQ(RegistryText(kKey, L"Text"), text);
}

TEST_F(Registry, GivesUpOnATextBeyondAnyReason) {
    m_registry.SetText(kKey, L"Text", std::wstring(100000, L'x'));
    EXPECT_EQ(RegistryText(kKey, L"Text"), std::nullopt);
}

TEST_F(Registry, EndsATextAtItsFirstZeroAndNeedsNone) {
    m_registry.SetBytes(kKey, L"Two", REG_SZ, std::string("a\0\0\0b\0\0\0", 8));
    m_registry.SetBytes(kKey, L"Open", REG_SZ, std::string("a\0b\0", 4));
    m_registry.SetBytes(kKey, L"Nothing", REG_SZ, "");
    EXPECT_EQ(RegistryText(kKey, L"Two"), L"a");
    EXPECT_EQ(RegistryText(kKey, L"Open"), L"ab");
    EXPECT_EQ(RegistryText(kKey, L"Nothing"), L"");
}

TEST_F(Registry, ExpandsAnExpandableText) {
    const std::wstring text = L"%SystemRoot%\\x";
    m_registry.SetBytes(kKey, L"Text", REG_EXPAND_SZ,
                        {reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * 2});
    const auto expanded = RegistryText(kKey, L"Text");
    ASSERT_TRUE(expanded.has_value());
    EXPECT_EQ(expanded->find(L'%'), std::wstring::npos);
    EXPECT_EQ(expanded->substr(expanded->size() - 2), L"\\x");
}

TEST_F(Registry, DeliversNothingForWhatIsMissingOrOfAnotherType) {
    m_registry.SetText(kKey, L"Text", L"5");
    m_registry.SetNumber(kKey, L"Number", 5);
    m_registry.SetBytes(kKey, L"Binary", REG_BINARY, std::string("\5\0\0\0", 4));
    m_registry.SetBytes(kKey, L"Long", REG_QWORD, std::string("\5\0\0\0\0\0\0\0", 8));
    for (const wchar_t* const value : {L"Number", L"Binary", L"Long", L"Missing"}) {
        EXPECT_EQ(RegistryText(kKey, value), std::nullopt);
    }
    for (const wchar_t* const value : {L"Text", L"Binary", L"Long", L"Missing"}) {
        EXPECT_EQ(RegistryNumber(kKey, value), std::nullopt);
    }
    EXPECT_EQ(RegistryText(L"SOFTWARE\\Nobody", L"Text"), std::nullopt);
    EXPECT_EQ(RegistryNumber(L"SOFTWARE\\Nobody", L"Number"), std::nullopt);
}

TEST_F(Registry, DeliversNothingWhereTheKeyIsRefused) {
    m_registry.SetNumber(kKey, L"Number", 5);
    const CallSpy<&WindowsCalls::regOpenKey> refused([](auto&&...) { return ERROR_ACCESS_DENIED; });
    EXPECT_EQ(RegistryNumber(kKey, L"Number"), std::nullopt);
    EXPECT_FALSE(RegistryKeyExists(kKey));
}

TEST(MachineRegistryTest, IsReadWhereNobodyPutAnother) {
    EXPECT_TRUE(RegistryKeyExists(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion"));
    EXPECT_NE(RegistryText(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", L"CurrentVersion"),
              std::nullopt);
}

// Which view of the registry a key is opened with.

REGSAM AccessUsed() {
    REGSAM used = 0;
    const CallSpy<&WindowsCalls::regOpenKey> spy(
        [&](HKEY, LPCWSTR, DWORD, REGSAM access, PHKEY) -> LSTATUS {
            used = access;
            return ERROR_FILE_NOT_FOUND;
        });
    RegistryKeyExists(kKey);
    return used;
}

template <BOOL kSucceeds, BOOL kIsWow64>
BOOL WINAPI AnswerIsWow64(HANDLE, PBOOL pbIsWow64) {
    *pbIsWow64 = kIsWow64;
    return kSucceeds;
}

FARPROC AsProcedure(BOOL(WINAPI* call)(HANDLE, PBOOL)) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(call));
}

TEST(RegistryViewTest, IsTheOnlyOneOfANativeProcess) {
    EXPECT_EQ(AccessUsed(), static_cast<REGSAM>(KEY_READ));
}

TEST(RegistryViewTest, IsThe64BitOneUnderWow64) {
    std::string asked;
    const CallSpy<&WindowsCalls::getProcAddress> wow64([&](HMODULE module, LPCSTR name) {
        EXPECT_EQ(module, GetModuleHandleW(L"kernel32"));
        asked = name;
        return AsProcedure(&AnswerIsWow64<TRUE, TRUE>);
    });
    EXPECT_EQ(AccessUsed(), static_cast<REGSAM>(KEY_READ | KEY_WOW64_64KEY));
    EXPECT_EQ(asked, "IsWow64Process");
}

TEST(RegistryViewTest, IsTheDefaultWhereTheCallIsMissingOrFails) {
    {
        const CallSpy<&WindowsCalls::getProcAddress> missing(
            [](auto&&...) -> FARPROC { return nullptr; });
        EXPECT_EQ(AccessUsed(), static_cast<REGSAM>(KEY_READ));
    }
    const CallSpy<&WindowsCalls::getProcAddress> failing(
        [](auto&&...) { return AsProcedure(&AnswerIsWow64<FALSE, TRUE>); });
    EXPECT_EQ(AccessUsed(), static_cast<REGSAM>(KEY_READ));
}

}  // namespace
