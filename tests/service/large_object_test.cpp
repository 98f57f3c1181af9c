#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "sdk/core/crypto/Hash.h"
#include "tests/service/LargeObjectTest.h"

namespace {

using Mirqos::Crypto::Sha256;
using Mirqos::Test::Bytes;
using Mirqos::Test::SomeBytes;

class LargeObject : public Mirqos::Test::LargeObjectTest {
protected:
    static constexpr std::size_t kPart = 8 * kMiB;
    static constexpr int kParts = 128;  // 1 GiB
};

// Parts go up synchronously from a few threads, because asynchronous ones are kept until the
// finish: no more than a part for each thread is in memory, and one batch of reads on the way back.
TEST_F(LargeObject, OneGibibyteComesBackWithTheDigestItWentUpWith) {
    constexpr int kSenders = 4;
    constexpr int kRangesInABatch = 8;
    const auto store = ThreadedStore();
    const std::string upload = Open(*store, "gibibyte");
    std::atomic<int> next{0};
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kSenders; ++sender) {
        senders.emplace_back([&] {
            for (int number; (number = ++next) <= kParts;) {
                const Bytes bytes = SomeBytes(kPart, static_cast<std::uint64_t>(number));
                auto part =
                    Part(upload, "gibibyte", number, bytes.data(), bytes.size(), number == kParts);
                EXPECT_EQ(store->MultiPartUpload(&part), 0);
            }
        });
    }
    Sha256 sent;
    for (int number = 1; number <= kParts; ++number) {
        const Bytes bytes = SomeBytes(kPart, static_cast<std::uint64_t>(number));
        sent.Update(bytes.data(), bytes.size());
    }
    for (std::thread& sender : senders) {
        sender.join();
    }
    auto finish = Finish(upload, "gibibyte", kParts);
    ASSERT_EQ(store->FinishMultiPartUpload(&finish), 0);

    Sha256 received;
    Bytes batch(kRangesInABatch * kPart);
    for (std::size_t first = 0; first < kParts * kPart; first += batch.size()) {
        std::fill(batch.begin(), batch.end(), static_cast<unsigned char>(0));
        ASSERT_EQ(ReadRanges(*store, "gibibyte", first, batch.size(), kPart, batch.data()), 0);
        received.Update(batch.data(), batch.size());
    }
    EXPECT_EQ(received.Finish(), sent.Finish());
    EXPECT_EQ(Delete(*store, "gibibyte"), 0);
}

}  // namespace
