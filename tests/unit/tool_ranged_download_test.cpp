#include "tools/mirqos/RangedDownload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace Mirqos::Tool {
namespace {

using Verdict = ReadPlan::Verdict;
constexpr std::int32_t kRefused = 100;

/// An object in memory, and what becomes of it on the other side.
class Transfer {
public:
    explicit Transfer(std::size_t size) : m_object(size) {
        std::uint32_t state = 1;
        for (auto& byte : m_object) {
            state = state * 1664525U + 1013904223U;
            byte = static_cast<unsigned char>(state >> 24U);
        }
        m_download.stopped = [] { return false; };
        m_download.makeReader = [this] { return Reader(); };
        m_download.take = [this](std::uint64_t offset, const unsigned char* from,
                                 std::size_t count) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_received.resize(std::max<std::size_t>(m_received.size(), offset + count));
            std::memcpy(m_received.data() + offset, from, count);
            m_taken += count;
        };
    }

    RangedDownload& Download() { return m_download; }
    std::size_t Readers() const { return m_readers; }
    std::size_t Reads() const { return m_reads; }
    /// Every byte arrived, each once.
    bool Arrived() const { return m_received == m_object && m_taken == m_object.size(); }

    RangeAnswer Answer(std::uint64_t first, std::uint64_t last, unsigned char* to) {
        ++m_reads;
        if (first >= m_object.size()) {
            return {kRefused, 0};
        }
        const std::uint64_t count = std::min<std::uint64_t>(last + 1, m_object.size()) - first;
        std::memcpy(to, m_object.data() + first, count);
        return {0, count};
    }

private:
    RangeReader Reader() {
        ++m_readers;
        return [this](std::uint64_t first, std::uint64_t last, unsigned char* to) {
            return Answer(first, last, to);
        };
    }

    std::vector<unsigned char> m_object;
    std::vector<unsigned char> m_received;
    std::uint64_t m_taken = 0;
    std::mutex m_mutex;
    std::atomic<std::size_t> m_readers{0};
    std::atomic<std::size_t> m_reads{0};
    RangedDownload m_download;
};

TEST(ToolRangedDownload, SizesAroundThePartArriveWholeWithOneThreadAndWithMany) {
    constexpr std::size_t kPart = RangedDownload::kPart;
    constexpr std::size_t kOverlap = RangedDownload::kOverlap;
    for (const std::size_t size :
         {std::size_t{1}, kPart - 1, kPart, kPart + 1, 2 * kPart - 1, 2 * kPart - kOverlap,
          2 * kPart - kOverlap + 1, 2 * kPart, 2 * kPart + kPart / 2}) {
        for (const unsigned threads : {1U, 4U}) {
            Transfer transfer(size);
            transfer.Download().threads = threads;
            const auto result = transfer.Download().Run();
            EXPECT_EQ(result.verdict, Verdict::Complete) << size << ", threads " << threads;
            EXPECT_EQ(result.size, size);
            EXPECT_TRUE(transfer.Arrived()) << size << ", threads " << threads;
        }
    }
}

TEST(ToolRangedDownload, AnObjectOfOnePartIsReadOnceByOneReader) {
    Transfer transfer(1000);
    transfer.Download().threads = 8;
    EXPECT_EQ(transfer.Download().Run().verdict, Verdict::Complete);
    EXPECT_EQ(transfer.Readers(), 1U);
    EXPECT_EQ(transfer.Reads(), 1U);
}

TEST(ToolRangedDownload, AFirstReadThatFailsIsTheOnlyOne) {
    Transfer transfer(0);
    transfer.Download().threads = 8;
    const auto result = transfer.Download().Run();
    EXPECT_EQ(result.verdict, Verdict::Failed);
    EXPECT_EQ(result.status, kRefused);
    EXPECT_TRUE(result.failedAtOnce);
    EXPECT_EQ(transfer.Reads(), 1U);
}

TEST(ToolRangedDownload, AFailureInTheMiddleFailsTheWholeWithItsStatus) {
    Transfer transfer(3 * RangedDownload::kPart);
    transfer.Download().threads = 3;
    transfer.Download().makeReader = [&]() -> RangeReader {
        return [&](std::uint64_t first, std::uint64_t last, unsigned char* to) -> RangeAnswer {
            if (first < 2 * RangedDownload::kPart && last >= 2 * RangedDownload::kPart - 1 &&
                first > 0) {
                return {99, 0};
            }
            return transfer.Answer(first, last, to);
        };
    };
    const auto result = transfer.Download().Run();
    EXPECT_EQ(result.verdict, Verdict::Failed);
    EXPECT_EQ(result.status, 99);
    EXPECT_FALSE(result.failedAtOnce);
}

TEST(ToolRangedDownload, WhatTheReceiverThrowsEndsItAndComesOut) {
    for (const unsigned threads : {1U, 4U}) {
        Transfer transfer(5 * RangedDownload::kPart);
        transfer.Download().threads = threads;
        transfer.Download().take = [](std::uint64_t offset, const unsigned char*, std::size_t) {
            if (offset > 0) {
                throw std::runtime_error("the disk is full");
            }
        };
        EXPECT_THROW(transfer.Download().Run(), std::runtime_error);
    }
}

TEST(ToolRangedDownload, AReaderThatCannotBeMadeEndsIt) {
    Transfer transfer(5 * RangedDownload::kPart);
    transfer.Download().threads = 4;
    auto made = std::make_shared<std::atomic<int>>(0);
    transfer.Download().makeReader = [&transfer, made]() -> RangeReader {
        if (++*made > 1) {
            throw std::runtime_error("no memory");
        }
        // goes on only when the others have failed, so that one of them certainly does
        return [&transfer, made](std::uint64_t first, std::uint64_t last, unsigned char* to) {
            while (first > 0 && *made < 2) {
                std::this_thread::yield();
            }
            return transfer.Answer(first, last, to);
        };
    };
    EXPECT_THROW(transfer.Download().Run(), std::runtime_error);
}

TEST(ToolRangedDownload, AStopEndsItBetweenTheRanges) {
    Transfer transfer(5 * RangedDownload::kPart);
    transfer.Download().stopped = [&] { return transfer.Reads() >= 2; };
    const auto result = transfer.Download().Run();
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(transfer.Reads(), 2U);
}

TEST(ToolRangedDownload, AGivenSizeSparesTheReadsBehindTheEnd) {
    Transfer transfer(2 * RangedDownload::kPart);
    transfer.Download().threads = 8;
    transfer.Download().size = 2 * RangedDownload::kPart;
    EXPECT_EQ(transfer.Download().Run().verdict, Verdict::Complete);
    EXPECT_EQ(transfer.Reads(), 3U);
    EXPECT_TRUE(transfer.Arrived());
}

TEST(ToolRangedDownload, AnotherSizeThanGivenIsAnError) {
    Transfer transfer(1000);
    transfer.Download().size = 999;
    EXPECT_EQ(transfer.Download().Run().verdict, Verdict::WrongSize);
}

}  // namespace
}  // namespace Mirqos::Tool
