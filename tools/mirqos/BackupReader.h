#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/mirqos/BackupStore.h"
#include "tools/mirqos/Manifest.h"
#include "tools/mirqos/ObjectReader.h"

namespace Mirqos::Tool {

class Progress;
struct Settings;

/// A file of the manifest.
struct StoredFile {
    std::string path;
    FileRecord record;
};

/// The files that are not deleted.
std::vector<StoredFile> LiveFiles(const Manifest& manifest);

std::uint64_t TotalSize(const std::vector<StoredFile>& files);

/// What one object turned out to be.
enum class ObjectState { Good, Missing, Differs };

/// Reads one file's object; `take` gets its bytes in their order.
using ReadStored =
    std::function<ObjectState(const StoredFile& file, const ObjectReader::Sink& take)>;

/// Reads the objects of many files of a backup: large ones one after another with all threads, the
/// others a thread for each, and compares their digests with the manifest's.
class BackupReader {
public:
    BackupReader(const Session& session, const BackupStore& backup, const Settings& settings,
                 const Interruption& interruption, Progress& progress)
        : m_session(session),
          m_backup(backup),
          m_settings(settings),
          m_interruption(interruption),
          m_progress(progress) {}

    /// Calls `work` for each file, from several threads. It may call `read` once, and throw: that
    /// ends the whole. `files` is put in another order; `index` is that of the file in it.
    using Work =
        std::function<void(std::size_t index, const StoredFile& file, const ReadStored& read)>;
    void ForEach(std::vector<StoredFile>& files, const Work& work) const;

private:
    ObjectState Read(ObjectReader& reader, MIRQOSInterface& store, const StoredFile& file,
                     const ObjectReader::Sink& take) const;

    const Session& m_session;
    const BackupStore& m_backup;
    const Settings& m_settings;
    const Interruption& m_interruption;
    Progress& m_progress;
};

}  // namespace Mirqos::Tool
