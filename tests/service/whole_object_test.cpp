#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "store/AwsSdk.h"
#include "tests/service/ServiceTest.h"

namespace {

using Mirqos::Test::Bytes;
using Mirqos::Test::ReadAttempt;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;
using testing::IsEmpty;

constexpr std::size_t kMiB = std::size_t{1} << 20;

class WholeObject : public ServiceTest {
protected:
    static Bytes Slice(const Bytes& bytes, std::size_t first, std::size_t last) {
        return {bytes.begin() + static_cast<std::ptrdiff_t>(first),
                bytes.begin() + static_cast<std::ptrdiff_t>(last) + 1};
    }

    /// Writes an object of `size` bytes, reads all of it with one request and deletes it again.
    void RoundTrip(std::size_t size) {
        const auto store = NewStore(Config(size));
        const Bytes bytes = SomeBytes(size, size);
        ASSERT_EQ(Write(*store, "object", bytes), 0);
        const ReadAttempt read = Read(*store, "object", 0, size - 1);
        EXPECT_EQ(read.status, 0);
        EXPECT_EQ(read.readSize, size);
        EXPECT_TRUE(read.Delivered() == bytes);
        EXPECT_TRUE(read.RestLeftAlone());
        EXPECT_THAT(Log().Texts(), IsEmpty());
        EXPECT_EQ(store->GetRequestCount(), 2u);
        EXPECT_EQ(Delete(*store, "object"), 0);
    }
};

TEST_F(WholeObject, OneByteComesBack) {
    RoundTrip(1);
}

TEST_F(WholeObject, FiveMebibytesComeBack) {
    RoundTrip(5 * kMiB);
}

TEST_F(WholeObject, SixtyFourMebibytesComeBack) {
    RoundTrip(64 * kMiB);
}

TEST_F(WholeObject, AnEmptyObjectExistsAndHoldsNoByte) {
    const auto store = NewStore(Config());
    ASSERT_EQ(Write(*store, "empty", {}), 0);
    EXPECT_THAT(Log().Texts(), IsEmpty());
    // A range always asks for one byte at least, which an empty object has not: the service refuses
    // the range, not the key.
    const ReadAttempt read = Read(*store, "empty", 0, 0);
    EXPECT_EQ(read.status, static_cast<std::int32_t>(Aws::S3::S3Errors::UNKNOWN));
    EXPECT_TRUE(read.LeftAlone());
    EXPECT_EQ(Log().CountContaining("InvalidRange"), 1u);
}

TEST_F(WholeObject, ASecondWriteReplacesTheObject) {
    const auto store = NewStore(Config());
    ASSERT_EQ(Write(*store, "object", SomeBytes(1000, 1)), 0);
    const Bytes second = SomeBytes(10, 2);
    ASSERT_EQ(Write(*store, "object", second), 0);
    const ReadAttempt read = Read(*store, "object", 0, 999);
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.Delivered(), second);
}

TEST_F(WholeObject, TheCallersBytesAreNotTouched) {
    const auto store = NewStore(Config());
    const Bytes bytes = SomeBytes(kMiB);
    Bytes given = bytes;
    ASSERT_EQ(Write(*store, "object", given), 0);
    EXPECT_TRUE(given == bytes);
}

TEST_F(WholeObject, RangesAtTheStartInTheMiddleAndAtTheEndDeliverTheirBytes) {
    const auto store = NewStore(Config());
    const Bytes bytes = SomeBytes(5 * kMiB + 17);
    ASSERT_EQ(Write(*store, "object", bytes), 0);
    const std::size_t end = bytes.size() - 1;
    const std::pair<std::size_t, std::size_t> ranges[] = {
        {0, 0},          {0, kMiB - 1}, {100, 199}, {3 * kMiB - 1, 3 * kMiB + 4096},
        {end - 99, end}, {end, end}};
    for (const auto& [first, last] : ranges) {
        const ReadAttempt read = Read(*store, "object", first, last);
        EXPECT_EQ(read.status, 0) << first;
        EXPECT_EQ(read.readSize, last - first + 1) << first;
        EXPECT_TRUE(read.Delivered() == Slice(bytes, first, last)) << first;
        EXPECT_TRUE(read.RestLeftAlone()) << first;
    }
    EXPECT_THAT(Log().Texts(), IsEmpty());
}

TEST_F(WholeObject, ARangeAcrossTheEndDeliversWhatThereIs) {
    const auto store = NewStore(Config());
    const Bytes bytes = SomeBytes(1000);
    ASSERT_EQ(Write(*store, "object", bytes), 0);
    const ReadAttempt read = Read(*store, "object", 900, 1899);
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.readSize, 100u);
    EXPECT_EQ(read.Delivered(), Slice(bytes, 900, 999));
    EXPECT_TRUE(read.RestLeftAlone());
}

TEST_F(WholeObject, AnotherBucketThanTheConfiguredOneIsUsedAsGiven) {
    const auto store = NewStore(Config());
    const std::string other = Mirqos::Test::NewBucketName();
    CloudStoreCreateBucketContext create;
    create.m_pszBucket = other.c_str();
    ASSERT_EQ(store->CreateBucket(&create), 0);
    const Bytes bytes = SomeBytes(100);
    ASSERT_EQ(Write(*store, "object", bytes, other), 0);
    EXPECT_EQ(Read(*store, "object", 0, 99, other).Delivered(), bytes);
    EXPECT_EQ(Read(*store, "object", 0, 99).status,
              static_cast<std::int32_t>(Aws::S3::S3Errors::NO_SUCH_KEY));
}

TEST_F(WholeObject, ManyThreadsWriteThroughOneStoreAtOnce) {
    const auto store = NewStore(Config());
    constexpr int threads = 8;
    constexpr int objects = 10;
    std::vector<std::thread> writers;
    for (int thread = 0; thread < threads; ++thread) {
        writers.emplace_back([&, thread] {
            for (int object = 0; object < objects; ++object) {
                const auto seed = static_cast<std::uint64_t>(thread * objects + object);
                EXPECT_EQ(Write(*store, "object-" + std::to_string(seed), SomeBytes(5000, seed)),
                          0);
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    for (std::uint64_t seed = 0; seed < threads * objects; ++seed) {
        const ReadAttempt read = Read(*store, "object-" + std::to_string(seed), 0, 4999);
        EXPECT_TRUE(read.Delivered() == SomeBytes(5000, seed)) << seed;
    }
    EXPECT_EQ(store->GetRequestCount(), 2u * threads * objects);
}

}  // namespace
