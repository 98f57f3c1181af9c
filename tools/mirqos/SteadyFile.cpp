#include "tools/mirqos/SteadyFile.h"

#include <algorithm>
#include <vector>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Folder.h"

namespace Mirqos::Tool {

namespace {

// the coarsest step in which a usual file system stamps: two seconds
constexpr FileTime kCoarsestStep = 20'000'000;
constexpr std::size_t kPiece = std::size_t{1} << 20U;

[[noreturn]] void FailChanged() {
    throw Failure(ExitCode::LocalFile, "changed while it was read");
}

}  // namespace

SteadyFile::SteadyFile(const std::string& name)
    : m_opened(Now()), m_file(LocalFile::OpenForReading(name)), m_state(m_file.State()) {
}

void SteadyFile::Read(unsigned char* to, std::size_t size) {
    if (m_file.Read(to, size) != size) {
        FailChanged();
    }
    m_done += size;
    m_digest.Update(to, size);
}

FileRecord SteadyFile::Finish() {
    unsigned char more = 0;
    if (m_done != m_state.size || m_file.Read(&more, 1) != 0 || m_file.State() != m_state) {
        FailChanged();
    }
    FileRecord record;
    record.state = m_state;
    record.sha256 = m_digest.Finish();
    record.recent = m_state.modified > m_opened - kCoarsestStep;
    return record;
}

FileRecord DigestFile(const std::string& name, const std::function<void(std::size_t)>& onStep) {
    SteadyFile file(name);
    std::vector<unsigned char> piece(kPiece);
    for (std::uint64_t left = file.Size(); left > 0;) {
        const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(left, kPiece));
        file.Read(piece.data(), length);
        onStep(length);
        left -= length;
    }
    return file.Finish();
}

}  // namespace Mirqos::Tool
