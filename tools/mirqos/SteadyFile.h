#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "tools/mirqos/LocalFile.h"
#include "tools/mirqos/Manifest.h"
#include "tools/mirqos/Sha256.h"

namespace Mirqos::Tool {

/// A file that is read from front to end, with its digest and the proof that it stayed the same
/// meanwhile. Every failure throws Failure (LocalFile).
class SteadyFile {
public:
    explicit SteadyFile(const std::string& name);

    std::uint64_t Size() const { return m_state.size; }
    /// Reads on: exactly `size` bytes, which the file still has to have.
    void Read(unsigned char* to, std::size_t size);
    /// After the last byte: what was read. Throws where the file is another now.
    FileRecord Finish();

private:
    FileTime m_opened;
    LocalFile m_file;
    FileState m_state;
    std::uint64_t m_done = 0;
    Sha256 m_digest;
};

/// Reads the whole file and returns what SteadyFile::Finish does. `onStep` gets the size of each
/// piece read and may throw.
FileRecord DigestFile(const std::string& name, const std::function<void(std::size_t)>& onStep);

}  // namespace Mirqos::Tool
