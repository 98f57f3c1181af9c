#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using Interim = WireTest;

// Not for Wine, whose WinHTTP passes interim heads up and ends the exchange there.
TEST_F(Interim, AnswersAreNotTheAnswer) {
    m_server.Next(Answer::Status(200).Interim(100).Interim(102));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", "v"), 0);
    EXPECT_EQ(OnlyRequest().body, "v");
}

}  // namespace
}  // namespace Mirqos::Test
