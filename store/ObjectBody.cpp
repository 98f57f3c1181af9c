#include "store/ObjectBody.h"

#include <algorithm>
#include <string>

namespace Mirqos {

Aws::String RangeText(uint64_t nFirst, uint64_t nLast) {
    const std::string text = "bytes=" + std::to_string(nFirst) + "-" + std::to_string(nLast);
    return Aws::String(text.c_str());
}

uint64_t CopyBody(std::streambuf& body, int64_t nContentLength, unsigned char* pDestination) {
    const std::streamsize nAvailable = std::max<std::streamsize>(body.in_avail(), 0);
    const auto nBytes = std::min<std::streamsize>(nAvailable, std::max<int64_t>(nContentLength, 0));
    return static_cast<uint64_t>(body.sgetn(reinterpret_cast<char*>(pDestination), nBytes));
}

}  // namespace Mirqos
