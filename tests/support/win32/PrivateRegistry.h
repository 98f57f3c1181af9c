#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "log/dbg/win32/Owned.h"
#include "platform/undo_windows_macros.h"

namespace Mirqos::Test {

/// An empty HKEY_LOCAL_MACHINE for this process, and for as long as it lives: other tests, which
/// may run at the same time, keep the machine's. One at a time.
class PrivateRegistry {
public:
    PrivateRegistry();
    ~PrivateRegistry();
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;

    // Keys are made where they are missing.
    void AddKey(const std::wstring& key);
    void SetText(const std::wstring& key, const std::wstring& value, const std::wstring& text);
    void SetNumber(const std::wstring& key, const std::wstring& value, std::uint32_t number);
    /// A value of any type, with exactly these bytes.
    void SetBytes(const std::wstring& key, const std::wstring& value, DWORD type,
                  const std::string& bytes);
    void Remove(const std::wstring& key);

private:
    std::wstring m_name;  // below HKEY_CURRENT_USER
    LOGUTILS::RegistryKey m_root;
};

}  // namespace Mirqos::Test
