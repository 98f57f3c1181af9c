#include "store/ObjectBody.h"

#include <charconv>
#include <string>

namespace Mirqos {

Aws::String RangeText(uint64_t nFirst, uint64_t nLast) {
    const std::string text = "bytes=" + std::to_string(nFirst) + "-" + std::to_string(nLast);
    return Aws::String(text.c_str());
}

std::optional<uint64_t> FirstByteOf(std::string_view contentRange) {
    const size_t nSpace = contentRange.find(' ');
    if (nSpace == std::string_view::npos) {
        return std::nullopt;
    }
    uint64_t nFirst = 0;
    const char* pEnd = contentRange.data() + contentRange.size();
    const auto read = std::from_chars(contentRange.data() + nSpace + 1, pEnd, nFirst);
    if (read.ec != std::errc() || read.ptr == pEnd || *read.ptr != '-') {
        return std::nullopt;
    }
    return nFirst;
}

bool HoldsRange(const Aws::S3::Model::GetObjectResult& answer, std::streambuf& body,
                const CloudStoreReadObjectContext& read) {
    const Aws::String& range = answer.GetContentRange();
    const auto nFirst = range.empty() ? 0 : FirstByteOf({range.data(), range.size()});
    return nFirst == read.m_nRangeStart || read.m_nRangeEnd < read.m_nRangeStart ||
           body.in_avail() == 0;
}

uint64_t CopyBody(std::streambuf& body, unsigned char* pDestination) {
    return static_cast<uint64_t>(
        body.sgetn(reinterpret_cast<char*>(pDestination), body.in_avail()));
}

}  // namespace Mirqos
