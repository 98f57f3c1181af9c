#include "store/ObjectBody.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace Mirqos {

Aws::String RangeText(uint64_t nFirst, uint64_t nLast) {
    const std::string text = "bytes=" + std::to_string(nFirst) + "-" + std::to_string(nLast);
    return Aws::String(text.c_str());
}

std::optional<AnsweredRange> ReadContentRange(std::string_view contentRange) {
    const size_t nSpace = contentRange.find(' ');
    if (nSpace == std::string_view::npos) {
        return std::nullopt;
    }
    AnsweredRange range;
    const char* const pEnd = contentRange.data() + contentRange.size();
    const auto first = std::from_chars(contentRange.data() + nSpace + 1, pEnd, range.nFirst);
    if (first.ec != std::errc() || first.ptr == pEnd || *first.ptr != '-') {
        return std::nullopt;
    }
    uint64_t nLast = 0;
    const auto last = std::from_chars(first.ptr + 1, pEnd, nLast);
    if (last.ec == std::errc() && nLast >= range.nFirst) {
        range.nLength = nLast - range.nFirst + 1;
    }
    return range;
}

const char* RangeFault(const Aws::S3::Model::GetObjectResult& answer, std::streambuf& body,
                       const CloudStoreReadObjectContext& read) {
    if (read.m_nRangeEnd < read.m_nRangeStart) {
        return nullptr;
    }
    const auto nReceived = static_cast<uint64_t>(std::max<std::streamsize>(body.in_avail(), 0));
    const Aws::String& header = answer.GetContentRange();
    const std::optional<AnsweredRange> range =
        header.empty() ? AnsweredRange() : ReadContentRange({header.data(), header.size()});
    if (nReceived == 0 && (!range || range->nLength == 0)) {
        return nullptr;
    }
    if (!range || range->nFirst != read.m_nRangeStart) {
        return "The answer holds other bytes than the range asked for.";
    }
    if (nReceived < std::min(range->nLength, read.m_nReadLen)) {
        return "The answer holds fewer bytes than its range.";
    }
    return nullptr;
}

uint64_t CopyBody(std::streambuf& body, unsigned char* pDestination) {
    return static_cast<uint64_t>(
        body.sgetn(reinterpret_cast<char*>(pDestination), body.in_avail()));
}

}  // namespace Mirqos
