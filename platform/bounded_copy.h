#pragma once

#include <cstddef>

/// Copies into rooms of fixed size. They are spelled out here because the runtimes disagree on what
/// happens when something does not fit: some end the process, some return and go on.
namespace Mirqos {

/// Copies `text` and its terminator into `room`, which has `size` characters. Ends the process when
/// it does not fit or when a pointer is null: the caller has promised a room that is large enough.
void CopyTextOrEndProcess(char* room, std::size_t size, const char* text);

inline constexpr int kCopyDone = 0;
inline constexpr int kCopyInvalid = 22;     ///< a pointer is null
inline constexpr int kCopyDoesNotFit = 34;  ///< more bytes than room

/// Copies `length` bytes into `room`, which has `size` bytes. Returns kCopyDone, kCopyInvalid or
/// kCopyDoesNotFit; on failure the whole room is cleared, if there is one. Nothing to copy is a
/// success that touches nothing.
[[nodiscard]] int CopyBytesOrClear(void* room, std::size_t size, const void* bytes,
                                   std::size_t length);

}  // namespace Mirqos
