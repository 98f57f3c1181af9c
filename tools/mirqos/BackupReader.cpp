#include "tools/mirqos/BackupReader.h"

#include <algorithm>
#include <memory>

#include "tools/mirqos/Listing.h"
#include "tools/mirqos/Progress.h"
#include "tools/mirqos/RangedDownload.h"
#include "tools/mirqos/Settings.h"
#include "tools/mirqos/Sha256.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/WorkCrew.h"

namespace Mirqos::Tool {

namespace {

/// A store and the reader on it, of one thread.
struct OwnReader {
    OwnReader(StorePointer opened, unsigned ranges, const Interruption& interruption)
        : store(std::move(opened)), reader(*store, ranges, interruption) {}

    StorePointer store;
    ObjectReader reader;
};

}  // namespace

std::vector<StoredFile> LiveFiles(const Manifest& manifest) {
    std::vector<StoredFile> files;
    for (const auto& [path, record] : manifest.files) {
        if (!record.deleted) {
            files.push_back({path, record});
        }
    }
    return files;
}

std::uint64_t TotalSize(const std::vector<StoredFile>& files) {
    std::uint64_t total = 0;
    for (const StoredFile& file : files) {
        total += file.record.state.size;
    }
    return total;
}

void BackupReader::ForEach(std::vector<StoredFile>& files, const Work& work) const {
    const auto small = std::stable_partition(files.begin(), files.end(), [](const auto& file) {
        return file.record.state.size > ObjectReader::kRange;
    });
    const auto large = static_cast<std::size_t>(small - files.begin());
    const auto make = [&](std::size_t first, unsigned ranges) {
        return [&, first, ranges]() -> Worker {
            const auto own = std::make_shared<OwnReader>(
                m_session.OpenStore(m_backup.Bucket(), RangedDownload::kRoom,
                                    ranges > 1 ? ranges : 0),
                ranges, m_interruption);
            return [&, first, own](std::size_t index) {
                m_interruption.CheckPoint();
                const auto read = [&, own](const StoredFile& file, const ObjectReader::Sink& take) {
                    return Read(own->reader, *own->store, file, take);
                };
                work(first + index, files[first + index], read);
            };
        };
    };
    DoAll(large, 1, make(0, m_settings.threads));
    DoAll(files.size() - large, m_settings.threads, make(large, 1));
}

ObjectState BackupReader::Read(ObjectReader& reader, MIRQOSInterface& store, const StoredFile& file,
                               const ObjectReader::Sink& take) const {
    const ObjectUrl url = m_backup.UrlOf(file.path);
    Sha256 digest;
    const std::int32_t status =
        reader.Read(url, file.record.state.size,
                    [&](std::uint64_t offset, const unsigned char* from, std::size_t size) {
                        digest.Update(from, size);
                        take(offset, from, size);
                        m_progress.Add(size);
                    });
    if (status == 0) {
        return digest.Finish() == file.record.sha256 ? ObjectState::Good : ObjectState::Differs;
    }
    if ((IsS3Status(status) || status == kStatusNotFound) && !ObjectAnswers(store, url)) {
        return ObjectState::Missing;
    }
    // a range behind the end of an object that is too short has a status that means other things
    // too
    const auto size = status == kStatusUnknown
                          ? ListedSize(store, url, m_settings.provider)
                          : std::optional<std::uint64_t>(file.record.state.size);
    if (size && *size != file.record.state.size) {
        return ObjectState::Differs;
    }
    CheckStatus(status, "ReadObject", url, store);
    return ObjectState::Good;
}

}  // namespace Mirqos::Tool
