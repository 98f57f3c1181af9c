#include "tools/mirqos/posix/FileStatus.h"

#include <system_error>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

constexpr FileTime kPerSecond = 10'000'000;
constexpr FileTime kNanoseconds = 100;

}  // namespace

FileState StateOf(const struct stat& info) {
    return {static_cast<std::uint64_t>(info.st_size),
            FileTime{info.st_mtim.tv_sec} * kPerSecond + info.st_mtim.tv_nsec / kNanoseconds};
}

timespec TimespecOf(FileTime time) {
    // a time before 1970 has negative seconds, but never negative parts of them
    const FileTime part = ((time % kPerSecond) + kPerSecond) % kPerSecond;
    timespec result{};
    result.tv_sec = static_cast<time_t>((time - part) / kPerSecond);
    result.tv_nsec = static_cast<long>(part * kNanoseconds);
    return result;
}

void FailWith(int error, const std::string& doing, const std::string& name) {
    throw Failure(ExitCode::LocalFile, "cannot " + doing + " '" + Printable(name) +
                                           "': " + std::generic_category().message(error));
}

}  // namespace Mirqos::Tool
