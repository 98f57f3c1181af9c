#include "tools/mirqos/ObjectReader.h"

#include <algorithm>
#include <utility>

#include "tools/mirqos/RangeRead.h"

namespace Mirqos::Tool {

namespace {

// what a wait answers when it ended before every read was answered
constexpr std::int32_t kUnanswered = -1;
constexpr int kMostTries = 3;

CloudStoreReadObjectContext RangeOf(const ObjectUrl& url, std::uint64_t first, std::uint64_t end,
                                    unsigned char* to) {
    CloudStoreReadObjectContext read;
    read.m_pszBucket = url.bucket.c_str();
    read.m_pszKey = url.key.c_str();
    read.m_pBuf = to;
    read.m_nReadLen = end - first;
    read.m_nReadSize = 0;
    read.m_nRangeStart = first;
    read.m_nRangeEnd = end - 1;
    return read;
}

}  // namespace

ObjectReader::ObjectReader(MIRQOSInterface& store, unsigned ranges,
                           const Interruption& interruption)
    : m_store(store),
      m_ranges(ranges),
      m_range(std::min(kRange, kBatch / ranges)),
      m_interruption(interruption) {
}

std::int32_t ObjectReader::Read(const ObjectUrl& url, std::uint64_t size, const Sink& take) {
    m_interruption.CheckPoint();
    if (size == 0) {
        return 0;
    }
    return size <= kRange || m_ranges == 1 ? ReadOne(url, size, take) : ReadMany(url, size, take);
}

std::int32_t ObjectReader::ReadOne(const ObjectUrl& url, std::uint64_t size, const Sink& take) {
    const auto room = static_cast<std::size_t>(std::min<std::uint64_t>(size, kRange));
    m_now.bytes.resize(std::max(m_now.bytes.size(), room));
    for (std::uint64_t begin = 0; begin < size; begin += kRange) {
        m_interruption.CheckPoint();
        const std::uint64_t end = std::min<std::uint64_t>(size, begin + kRange);
        const RangeAnswer answer = ReadRange(m_store, url, begin, end - 1, m_now.bytes.data());
        if (answer.status != 0) {
            return answer.status;
        }
        take(begin, m_now.bytes.data(), static_cast<std::size_t>(end - begin));
    }
    return 0;
}

/// While one batch is on its way, the one before it is worked on.
std::int32_t ObjectReader::ReadMany(const ObjectUrl& url, std::uint64_t size, const Sink& take) {
    const std::uint64_t length = std::uint64_t{m_range} * m_ranges;
    m_now.bytes.resize(static_cast<std::size_t>(length));
    m_next.bytes.resize(static_cast<std::size_t>(length));
    const auto startAt = [&](std::uint64_t begin) {
        m_next.begin = begin;
        m_next.end = std::min(size, begin + length);
        Start(url, m_next);
    };
    startAt(0);
    for (std::uint64_t done = 0; done < size; done = m_now.end) {
        if (const std::int32_t status = Wait(url, m_next); status != 0) {
            return status;
        }
        std::swap(m_now, m_next);
        m_interruption.CheckPoint();
        const bool more = m_now.end < size;
        if (more) {
            startAt(m_now.end);
        }
        try {
            take(m_now.begin, m_now.bytes.data(),
                 static_cast<std::size_t>(m_now.end - m_now.begin));
        } catch (...) {
            if (more) {
                // the reads still write to the buffer
                Wait(url, m_next);
            }
            throw;
        }
    }
    return 0;
}

void ObjectReader::Start(const ObjectUrl& url, Batch& batch) {
    for (std::uint64_t first = batch.begin; first < batch.end; first += m_range) {
        auto read = RangeOf(url, first, std::min<std::uint64_t>(batch.end, first + m_range),
                            batch.bytes.data() + (first - batch.begin));
        m_store.ReadObjectAsync(&read);
    }
}

std::int32_t ObjectReader::Wait(const ObjectUrl& url, Batch& batch) {
    std::int32_t status = kUnanswered;
    for (int tries = 1; status == kUnanswered; ++tries) {
        auto read = RangeOf(url, batch.begin, batch.end, batch.bytes.data());
        status = m_store.WaitForReadObjectAsync(&read);
        if (status != kUnanswered || tries == kMostTries) {
            break;
        }
        Start(url, batch);
    }
    return status;
}

}  // namespace Mirqos::Tool
