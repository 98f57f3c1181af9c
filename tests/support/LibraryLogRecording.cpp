#include "tests/support/LibraryLogRecording.h"

#include <gtest/gtest.h>

#include <string>

namespace Mirqos::Test {
namespace {

/// The few lines that are no results, by how they begin.
constexpr struct {
    const char* beginning;
    int level;
} kNotesAndTraces[] = {
    {"Succeed to delete object ", 2},
    {"[AwsS3Store::ListObjects]Truncated! ", 2},
    {"AwsS3Store::ReadObjectAsync lambda enter.", 2},
    {"[AwsS3Store::HandleAsyncReadFunc]. enter.", 2},
    {"[AwsS3Store::HandleAsyncReadFunc]. unknown error: m_pReadStatus is null.", 2},
    {"[AwsS3Store::HandleAsyncReadFunc]. notify_one ", 2},
    {"[AwsS3Store::HandleAsyncReadFunc]. leave.", 2},
    {"AwsS3Store::WaitForReadObjectAsync cv wait ", 2},
    {"AwsS3Store::ListObjects enter.", 3},
    {"AwsS3Store::ListObjectsSegmented enter.", 3},
    {"AwsS3Store::ReleaseObjectData ", 3},
};

int LevelOf(const std::string& line) {
    for (const auto& other : kNotesAndTraces) {
        if (line.rfind(other.beginning, 0) == 0) {
            return other.level;
        }
    }
    return 1;
}

}  // namespace

void LibraryLogRecording::ExpectLevels() {
    for (const RecordedLine& line : File().Lines()) {
        EXPECT_EQ(line.level, LevelOf(line.text)) << line.text;
    }
}

}  // namespace Mirqos::Test
