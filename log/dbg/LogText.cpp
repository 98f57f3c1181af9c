#include "log/dbg/LogText.h"

namespace LOGUTILS {

bool IsUnicodeFile(const std::array<char, 2>& beginning) {
    return std::string_view(beginning.data(), beginning.size()) == kByteOrderMark;
}

std::string Utf16Bytes(WideView text) {
    std::string bytes(text.size() * 2, '\0');
    char* pByte = bytes.data();
    for (const WideChar c : text) {
        *pByte++ = static_cast<char>(c & 0xFF);
        *pByte++ = static_cast<char>((c >> 8) & 0xFF);
    }
    return bytes;
}

WideString SourceTag(WideView processName, WideView libraryName, std::uint32_t dwModuleVersion) {
    WideString tag = "   {"_w;
    tag += processName;
    tag += "::"_w;
    tag += libraryName;
    tag += WidenAscii("(" + std::to_string(dwModuleVersion >> 16) + "." +
                      std::to_string(dwModuleVersion & 0xFFFF) + ")}");
    return tag;
}

}  // namespace LOGUTILS
