#include "store/ObjectBody.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace Mirqos {
namespace {

/// The content length does not tell: an answer in chunks has none.
std::streamsize ReceivedBytes(std::streambuf& body) {
    const std::streamoff nWritten = body.pubseekoff(0, std::ios_base::cur, std::ios_base::out);
    return std::max<std::streamsize>(nWritten, 0);
}

}  // namespace

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
           ReceivedBytes(body) == 0;
}

Aws::Client::AWSError<Aws::S3::S3Errors> OtherRange() {
    return {Aws::S3::S3Errors::UNKNOWN, "",
            "The answer holds other bytes than the range asked for.", false};
}

uint64_t CopyBody(std::streambuf& body, unsigned char* pDestination) {
    const std::streamsize nBytes = std::min(body.in_avail(), ReceivedBytes(body));
    return static_cast<uint64_t>(body.sgetn(reinterpret_cast<char*>(pDestination), nBytes));
}

}  // namespace Mirqos
