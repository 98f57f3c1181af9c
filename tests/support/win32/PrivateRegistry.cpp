#include "tests/support/win32/PrivateRegistry.h"

#include <stdexcept>

namespace Mirqos::Test {

namespace {

void Require(LSTATUS status, const char* what) {
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error(std::string(what) + ": " + std::to_string(status));
    }
}

// Volatile, so that none outlives the session should the test die.
LOGUTILS::RegistryKey CreateKey(HKEY parent, const std::wstring& name) {
    HKEY key = nullptr;
    Require(RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                            nullptr, &key, nullptr),
            "RegCreateKeyExW");
    return LOGUTILS::RegistryKey(key);
}

}  // namespace

PrivateRegistry::PrivateRegistry()
    : m_name(L"Software\\mirqos-test-" + std::to_wstring(GetCurrentProcessId())) {
    RegDeleteTreeW(HKEY_CURRENT_USER, m_name.c_str());
    m_root = CreateKey(HKEY_CURRENT_USER, m_name);
    Require(RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_root.Get()), "RegOverridePredefKey");
}

PrivateRegistry::~PrivateRegistry() {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    m_root.Reset();
    RegDeleteTreeW(HKEY_CURRENT_USER, m_name.c_str());
}

void PrivateRegistry::AddKey(const std::wstring& key) {
    CreateKey(m_root.Get(), key);
}

void PrivateRegistry::SetText(const std::wstring& key, const std::wstring& value,
                              const std::wstring& text) {
    const auto* const bytes = reinterpret_cast<const char*>(text.c_str());
    SetBytes(key, value, REG_SZ, {bytes, (text.size() + 1) * sizeof(wchar_t)});
}

void PrivateRegistry::SetNumber(const std::wstring& key, const std::wstring& value,
                                std::uint32_t number) {
    SetBytes(key, value, REG_DWORD, {reinterpret_cast<const char*>(&number), sizeof(number)});
}

void PrivateRegistry::SetBytes(const std::wstring& key, const std::wstring& value, DWORD type,
                               const std::string& bytes) {
    const LOGUTILS::RegistryKey opened = CreateKey(m_root.Get(), key);
    Require(RegSetValueExW(opened.Get(), value.c_str(), 0, type,
                           reinterpret_cast<const BYTE*>(bytes.data()),
                           static_cast<DWORD>(bytes.size())),
            "RegSetValueExW");
}

void PrivateRegistry::Remove(const std::wstring& key) {
    Require(RegDeleteTreeW(m_root.Get(), key.c_str()), "RegDeleteTreeW");
}

}  // namespace Mirqos::Test
