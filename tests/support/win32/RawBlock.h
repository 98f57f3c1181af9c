#pragma once

#include <windows.h>

#include <string>

#include "log/dbg/win32/Owned.h"
#include "tests/support/LogBlockBytes.h"

namespace Mirqos::Test {

/// The bytes of a log configuration block, found by its whole name.
class RawBlock {
public:
    /// Opens a block that exists.
    explicit RawBlock(const std::wstring& name)
        : RawBlock(OpenFileMappingW(FILE_MAP_ALL_ACCESS, FALSE, name.c_str())) {}
    /// Makes one, all zero, of `size` bytes.
    RawBlock(const std::wstring& name, DWORD size)
        : RawBlock(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size,
                                      name.c_str())) {}

    explicit operator bool() const { return static_cast<bool>(m_view); }
    unsigned char* Data() const { return static_cast<unsigned char*>(m_view.Get()); }
    LogBlockBytes Fields() const { return LogBlockBytes(Data()); }
    std::string Copy() const {
        return {reinterpret_cast<const char*>(Data()), LogBlockBytes::kSize};
    }

private:
    explicit RawBlock(HANDLE mapping)
        : m_mapping(mapping), m_view(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0)) {}

    LOGUTILS::KernelObject m_mapping;
    LOGUTILS::View m_view;
};

}  // namespace Mirqos::Test
