#pragma once

#include <cstddef>
#include <optional>

#include "log/dbg/WideText.h"

/// Where log files lie and what they are called. Paths are Windows paths on every platform.
namespace LOGUTILS {

inline constexpr std::size_t kPathRoom = 512;  ///< characters of a path, its terminator included
inline constexpr std::size_t kNameRoom = 64;   ///< the same of an executable's or library's name

/// Up to the last "\", without it; empty when there is none.
WideView FolderOf(WideView path);
/// After the last "\"; empty when there is none.
WideView FileNameOf(WideView path);

/// The file that the module called `name` logs to unless somebody says otherwise: a full path as it
/// is; a plain name (that of the library when it is empty) in the log root, ended by ".Log".
WideString DefaultLogPath(WideView name, WideView libraryName, WideView logRoot);

/// A log file and its successors make a series: a.dll.Log, a.dll.00000001.log, a.dll.00000002.log.
struct LogSeries {
    WideString base;  ///< "a.dll"
    int number = 0;   ///< 0 for the file that the series begins with
};

LogSeries SplitSeries(WideView path);
/// The member `number`, from 1, of the series; nothing when its path would not fit its room.
std::optional<WideString> SeriesMember(WideView base, int number);
/// Whether both mean one log file: equal, or of one series, letter case aside.
bool IsSameLog(WideView left, WideView right);

/// The name of the mutex on which all writers of a file meet, whatever the letter case and the
/// slash style of their paths.
WideString FileMutexName(WideView path);

}  // namespace LOGUTILS
