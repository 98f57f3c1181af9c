#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "tools/mirqos/Manifest.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/UploadWay.h"

namespace Mirqos::Tool {

class Interruption;
class Progress;
class SteadyFile;

/// Carries files to the service. What it throws: Failure (LocalFile) where the file cannot be read
/// or changes meanwhile, and then nothing was stored; Failure (OperationFailed) where the service
/// fails; Failure (Interrupted).
class FileSender {
public:
    /// `store`: with threads of its own where files go in parts. `inFlight`: see ChooseUpload.
    FileSender(MIRQOSInterface& store, unsigned threads, std::uint64_t inFlight,
               Interruption& interruption, Progress& progress);

    struct Result {
        FileRecord record;
        bool sent = false;  ///< false where the contents are those that are stored
    };

    /// Called before anything of the file is sent, and may throw: an upload that is not finished
    /// would keep its parts in memory.
    using AboutToStore = std::function<void()>;

    /// `stored`: what the object holds, where it is known. Files that go whole may be sent by
    /// several threads at once, others by one at a time.
    Result Send(const std::string& file, const ObjectUrl& url,
                const std::optional<FileRecord>& stored, const AboutToStore& aboutToStore) const;

private:
    Result SendWhole(SteadyFile& source, const ObjectUrl& url,
                     const std::optional<FileRecord>& stored,
                     const AboutToStore& aboutToStore) const;
    FileRecord SendAsync(SteadyFile& source, const ObjectUrl& url, const UploadWay& way) const;
    FileRecord SendParts(SteadyFile& source, const ObjectUrl& url, const UploadWay& way) const;

    MIRQOSInterface& m_store;
    const unsigned m_threads;
    const std::uint64_t m_inFlight;
    Interruption& m_interruption;
    Progress& m_progress;
};

}  // namespace Mirqos::Tool
