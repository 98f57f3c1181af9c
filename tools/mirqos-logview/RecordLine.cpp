#include "tools/mirqos-logview/RecordLine.h"

#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogView {

std::string LineOf(const NSDBG::CLogMessage& message) {
    std::wstring line = message.GetPrefix();
    line += message.GetText();
    line += L"   {";
    line += message.GetChannel();
    line += L"::";
    line += message.GetSource();
    line += L"}";
    return Tool::Printable(Tool::ToUtf8(line));
}

std::string Coloured(const std::string& line, const NSDBG::CLogMessage& message) {
    constexpr const char* kRed = "\x1b[31m";
    constexpr const char* kBold = "\x1b[1m";
    constexpr const char* kFaint = "\x1b[2m";
    constexpr const char* kPlain = "\x1b[0m";
    const char* colour = "";
    if (message.GetErrorCode() != 0) {
        colour = kRed;
    } else if (message.GetLevel() <= 1) {
        colour = kBold;
    } else if (message.GetLevel() >= 3) {
        colour = kFaint;
    }
    return *colour == '\0' ? line : colour + line + kPlain;
}

}  // namespace Mirqos::LogView
