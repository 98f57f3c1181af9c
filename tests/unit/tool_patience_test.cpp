#include "tools/mirqos/Patience.h"

#include <gtest/gtest.h>

#include "tools/mirqos/Statuses.h"

namespace Mirqos::Tool {
namespace {

constexpr std::int32_t kAccessDenied = 15;

class ToolPatience : public ::testing::Test {
protected:
    void Refuse(unsigned times) {
        for (unsigned i = 0; i < times; ++i) {
            m_patience.Bear("a", m_refused);
        }
    }

    const Failure m_refused{ExitCode::OperationFailed, "refused", kAccessDenied};
    Patience m_patience;
};

TEST_F(ToolPatience, WhatTheServiceRefusesIsOneFilesTrouble) {
    const Trouble trouble = m_patience.Bear("a/b", m_refused);
    EXPECT_EQ(trouble.path, "a/b");
    EXPECT_EQ(trouble.why, "refused");
    EXPECT_EQ(trouble.code, ExitCode::OperationFailed);
}

TEST_F(ToolPatience, RefusalsWithoutEndConcernAllFiles) {
    Refuse(Patience::kMostInARow - 1);
    EXPECT_THROW(Refuse(1), Failure);
}

TEST_F(ToolPatience, ASuccessBetweenRenewsIt) {
    Refuse(Patience::kMostInARow - 1);
    m_patience.Renew();
    Refuse(Patience::kMostInARow - 1);
}

TEST_F(ToolPatience, FilesThatCannotBeReadAreBorneWithoutEnd) {
    for (unsigned i = 0; i < 3 * Patience::kMostInARow; ++i) {
        EXPECT_EQ(m_patience.Bear("a", Failure(ExitCode::LocalFile, "no")).code,
                  ExitCode::LocalFile);
    }
}

TEST_F(ToolPatience, WhatIsNoFilesIsThrownOn) {
    for (const Failure& failure :
         {Failure(ExitCode::Interrupted, "Ctrl-C"),
          Failure(ExitCode::OperationFailed, "nobody answers", kStatusNoAnswer),
          Failure(ExitCode::OperationFailed, "the library does not start")}) {
        EXPECT_THROW(m_patience.Bear("a", failure), Failure);
    }
}

}  // namespace
}  // namespace Mirqos::Tool
