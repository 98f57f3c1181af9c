#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "log/dbg/WideText.h"
#include "log/dbg/win32/Owned.h"

/// What a log output asks of one log file.
namespace LOGUTILS {

/// The size from which on a file takes no further lines: 100 MiB.
inline constexpr std::uint32_t kFullSize = 104857600;

/// Opens the file, or creates it open to everyone; others may read and write it meanwhile. On
/// failure there is none and the thread's last error tells why.
File OpenLogFile(const WideString& path);

/// The file's size; nothing when the system does not say.
std::optional<std::uint64_t> SizeOf(const File& file);

/// Whether the file has reached kFullSize. Only the low 32 bits of its size count: writers of every
/// version have to agree on when a series goes on. A file that does not exist, or does not tell its
/// size, is not full.
bool IsFull(const File& file);
bool IsFull(const WideString& path);

/// The first two bytes of the file; nothing when they cannot be read.
std::optional<std::array<char, 2>> ReadBeginning(const File& file);
/// Puts the byte-order mark at the file's start and on the disk. Failures are ignored.
void WriteByteOrderMark(const File& file);

}  // namespace LOGUTILS
