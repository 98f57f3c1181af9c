// What becomes of large transfers, and of the server's own state, when the network between breaks.

#include <chrono>
#include <string>

#include "sdk/core/Seam.h"
#include "store/AwsSdk.h"
#include "tests/service/LargeObjectTest.h"
#include "tests/support/Relay.h"

namespace {

using Mirqos::TheSeam;
using Mirqos::Test::Bytes;
using Mirqos::Test::Relay;
using Mirqos::Test::SomeBytes;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kLost = static_cast<std::int32_t>(Aws::S3::S3Errors::NETWORK_CONNECTION);

class NetworkFaults : public Mirqos::Test::LargeObjectTest {
protected:
    static constexpr std::size_t kPart = 5 * kMiB;  // the least that the server joins
    static constexpr int kParts = 64;

    NetworkFaults() {
        TheSeam().sleep = [](std::chrono::milliseconds) {};
    }
    ~NetworkFaults() override { TheSeam() = {}; }

    /// A store whose bytes go through the relay, with a thread for each part.
    Mirqos::Test::StorePointer RelayedStore() {
        m_endpoint = m_relay.Endpoint();
        return ThreadedStore(kParts, m_endpoint.c_str());
    }
    static Bytes Whole() { return SomeBytes(kParts * kPart - 1234567); }
    std::size_t CountLines(const std::string& part) { return Log().CountContaining(part); }

    Relay m_relay{Mirqos::Test::TheS3Server().endpoint};
    std::string m_endpoint;
};

TEST_F(NetworkFaults, ResetsDuringAnUploadAreMadeUpForWithEveryByte) {
    const auto store = RelayedStore();
    const Bytes bytes = Whole();
    const std::string upload = Open(*store, "k");
    for (const std::size_t at : {1000 * std::size_t{1}, 10 * kMiB, 100 * kMiB, 250 * kMiB}) {
        m_relay.Plan(Relay::Way::toServer, at, Relay::Harm::reset);
    }
    m_relay.Plan(Relay::Way::toClient, 2000, Relay::Harm::reset);
    const int parts = SubmitAll(*store, upload, "k", bytes, kPart);
    auto finish = Finish(upload, "k", parts);
    EXPECT_EQ(store->FinishMultiPartUploadAsync(&finish), 0);
    EXPECT_EQ(m_relay.Done(), 5);
    EXPECT_EQ(CountLines("failed"), 0u);
    EXPECT_THAT(OpenUploads(), IsEmpty());
    EXPECT_TRUE(ReadBack(*ThreadedStore(), "k", bytes.size()) == bytes);
    EXPECT_EQ(Delete(*store, "k"), 0);
}

TEST_F(NetworkFaults, AStalledPartIsSentAgainOnceItsTimeIsUp) {
    TheSeam().stallLimit = std::chrono::seconds(10);
    const auto store = RelayedStore();
    const Bytes bytes = SomeBytes(4 * kPart + 1);
    const std::string upload = Open(*store, "k");
    m_relay.Plan(Relay::Way::toServer, 7 * kMiB, Relay::Harm::stall);
    const int parts = SubmitAll(*store, upload, "k", bytes, kPart);
    auto finish = Finish(upload, "k", parts);
    EXPECT_EQ(store->FinishMultiPartUploadAsync(&finish), 0);
    EXPECT_EQ(m_relay.Done(), 1);
    EXPECT_THAT(OpenUploads(), IsEmpty());
    EXPECT_TRUE(ReadBack(*ThreadedStore(), "k", bytes.size()) == bytes);
}

TEST_F(NetworkFaults, AServerOutOfReachFailsTheUploadAndLeavesItOpenForTheHostToAbort) {
    const auto store = RelayedStore();
    const Bytes bytes = Whole();
    const std::string upload = Open(*store, "k");
    m_relay.Plan(Relay::Way::toServer, 50 * kMiB, Relay::Harm::die);
    const int parts = SubmitAll(*store, upload, "k", bytes, kPart);
    auto finish = Finish(upload, "k", parts);
    EXPECT_EQ(store->FinishMultiPartUploadAsync(&finish), kLost);
    const std::size_t failed = CountLines("] failed.");
    EXPECT_GT(failed, 0u);
    EXPECT_EQ(CountLines("Part Upload:["), 2 * failed);
    EXPECT_EQ(CountLines("Complete Multi-Part"), 0u);
    EXPECT_EQ(store->FinishMultiPartUploadAsync(&finish), -1) << "the store has forgotten it";

    EXPECT_THAT(OpenUploads(), ElementsAre(upload));
    EXPECT_FALSE(Exists("k"));
    EXPECT_EQ(Abort(*store, upload, "k"), kLost) << "this store's way is still broken";
    EXPECT_EQ(Abort(*ThreadedStore(), upload, "k"), 0);
    EXPECT_THAT(OpenUploads(), IsEmpty());
}

TEST_F(NetworkFaults, ResetsDuringReadsAreMadeUpForWithEveryByte) {
    const Bytes bytes = SomeBytes(40 * kMiB);
    ASSERT_EQ(Write(*ThreadedStore(), "k", bytes), 0);
    const auto store = RelayedStore();
    for (const std::size_t at : {1 * kMiB, 20 * kMiB, 39 * kMiB}) {
        m_relay.Plan(Relay::Way::toClient, at, Relay::Harm::reset);
    }
    EXPECT_TRUE(ReadBack(*store, "k", bytes.size(), 1 * kMiB) == bytes);
    EXPECT_EQ(m_relay.Done(), 3);
}

TEST_F(NetworkFaults, AServerOutOfReachFailsTheReadsAndBuffersHoldAllOrNothing) {
    const Bytes bytes = SomeBytes(40 * kMiB);
    ASSERT_EQ(Write(*ThreadedStore(), "k", bytes), 0);
    const auto store = RelayedStore();
    m_relay.Plan(Relay::Way::toClient, 10 * kMiB + 4711, Relay::Harm::die);
    Bytes back(bytes.size(), 0);
    EXPECT_EQ(ReadRanges(*store, "k", 0, back.size(), kMiB, back.data()), kLost);
    const Bytes nothing(kMiB, 0);
    std::size_t delivered = 0;
    for (std::size_t first = 0; first < back.size(); first += kMiB) {
        const auto begin = static_cast<std::ptrdiff_t>(first);
        const auto end = static_cast<std::ptrdiff_t>(first + kMiB);
        const Bytes range(back.begin() + begin, back.begin() + end);
        const bool whole = range == Bytes(bytes.begin() + begin, bytes.begin() + end);
        EXPECT_TRUE(whole || range == nothing) << first;
        delivered += whole ? 1 : 0;
    }
    EXPECT_LT(delivered, 11u) << "more than came through";
}

}  // namespace
