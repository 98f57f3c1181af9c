#pragma once

#include <cstdint>
#include <optional>

#include "log/dbg/WideText.h"

/// Reading HKEY_LOCAL_MACHINE, always the 64-bit view: a 32-bit process has to see what the
/// product's installer wrote. Every call opens its key anew; nothing is cached here.
namespace LOGUTILS {

bool RegistryKeyExists(const WideString& key);
/// The string value; nothing when it is missing or of another type.
std::optional<WideString> RegistryText(const WideString& key, const WideString& value);
/// The DWORD value; nothing when it is missing or of another type.
std::optional<std::uint32_t> RegistryNumber(const WideString& key, const WideString& value);

}  // namespace LOGUTILS
