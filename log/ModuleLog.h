#pragma once

#include "platform/printf_like.h"

class CMIRQOSLog;

/// The library's own logger: built when the library is loaded, destroyed when it is unloaded, so
/// usable before the first start and after the last stop.
extern CMIRQOSLog g_ModuleLog;

/// Writes one line to the outputs of `pLog`. Levels: 1 for failures and most results, 2 for a few
/// success and paging notes, 3 for entry and leave traces, which the module's threshold drops
/// before anything is formatted.
///
/// The line is cut to 1023 characters and loses the line feeds at its start and end. Formats are
/// those of platform/format.h: 64-bit values take %lld and %llu, sizes are cast at the call, and %s
/// reads wide text in the wide form (WidenText converts).
///
/// Returns the number of characters formatted, -1 when the line was cut, 0 when it was dropped by
/// the threshold. Outputs report nothing. Any number of threads may call it at once.
int ModuleLog(CMIRQOSLog* pLog, int nLevel, const char* pszFormat, ...) MIRQOS_PRINTF_LIKE(3, 4);
int ModuleLogW(CMIRQOSLog* pLog, int nLevel, const wchar_t* pszFormat, ...);
