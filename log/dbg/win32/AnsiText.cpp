#include "log/dbg/win32/AnsiText.h"

#include <windows.h>

#include "platform/undo_windows_macros.h"

namespace LOGUTILS {

void WidenAnsi(wchar_t (&room)[kLineRoom], const char* pszText) {
    if (MultiByteToWideChar(CP_ACP, 0, pszText, -1, room, static_cast<int>(kLineRoom)) == 0) {
        room[0] = L'\0';
    }
}

}  // namespace LOGUTILS
