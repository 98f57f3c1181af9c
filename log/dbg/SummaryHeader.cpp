#include "log/dbg/SummaryHeader.h"

namespace LOGUTILS {
namespace {

WideString ProductLine(const ProductVersion& version) {
    std::string line = "Product Info: [Quorvane (USA) LLC] [quorvane Halvestor] Ver[r" +
                       std::to_string(version.m_dwMajor) + "." + std::to_string(version.m_dwMinor);
    if (version.m_dwUpdate != 0) {
        line += " (Update " + std::to_string(version.m_dwUpdate) + ")";
    }
    return WidenAscii(line + "]");
}

WideString SystemLine(const SummaryFacts& facts) {
    return "OS      Info: Computer Name["_w + facts.m_computerName +
           WidenAscii("] Version[" + std::to_string(facts.m_nSystemMajor) + "." +
                      std::to_string(facts.m_nSystemMinor) + "] Platform[" + facts.m_pszPlatform +
                      "]");
}

}  // namespace

WideString SummaryColumns() {
    return "[   Date        Time      Level  PID     TID   ErrCode    ] ......."_w;
}

std::vector<WideString> SummaryLines(const SummaryFacts& facts) {
    return {
        "================ SUMMARY LOG ======================="_w,
        ProductLine(facts.m_version),
        SystemLine(facts),
        "Log level of each module can be controlled by registry key:"_w,
        R"([HKEY_LOCAL_MACHINE\SOFTWARE\Quorvane\Halvestor\Engine\Debug\ModuleName:DWORD])"_w,
        "====================================================="_w,
    };
}

}  // namespace LOGUTILS
