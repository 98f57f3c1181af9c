#include "tools/mirqos/RangeRead.h"

namespace Mirqos::Tool {

RangeAnswer ReadRange(MIRQOSInterface& store, const ObjectUrl& url, std::uint64_t first,
                      std::uint64_t last, unsigned char* to) {
    CloudStoreReadObjectContext read;
    read.m_pszBucket = url.bucket.c_str();
    read.m_pszKey = url.key.c_str();
    read.m_pBuf = to;
    read.m_nReadLen = last >= first ? last - first + 1 : RangedDownload::kRoom;
    read.m_nReadSize = 0;
    read.m_nRangeStart = first;
    read.m_nRangeEnd = last;
    const std::int32_t status = store.ReadObject(&read);
    return {status, read.m_nReadSize};
}

}  // namespace Mirqos::Tool
