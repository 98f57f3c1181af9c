#include "tools/mirqos/BackupStore.h"

#include <cstring>
#include <memory>

#include "tools/mirqos/BackupPath.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/RangeRead.h"
#include "tools/mirqos/Statuses.h"

namespace Mirqos::Tool {

BackupStore::BackupStore(const Session& session, const ObjectUrl& prefix)
    : m_session(session), m_bucket(prefix.bucket), m_base(KeyBase(prefix.key)) {
}

ObjectUrl BackupStore::ManifestUrl() const {
    return {m_bucket, ManifestKey(m_base)};
}

std::optional<Manifest> BackupStore::Load(const Interruption& interruption) const {
    const auto text = LoadText(interruption);
    return text ? std::optional<Manifest>(ParseManifest(*text)) : std::nullopt;
}

std::optional<Manifest> BackupStore::LoadWhole(const Interruption& interruption) const {
    const auto text = LoadText(interruption);
    try {
        return text ? std::optional<Manifest>(ParseManifest(*text)) : std::nullopt;
    } catch (const Failure&) {
        return std::nullopt;
    }
}

std::optional<std::string> BackupStore::LoadText(const Interruption& interruption) const {
    const StorePointer store = m_session.OpenStore(m_bucket, 0);
    if (!ObjectAnswers(*store, ManifestUrl())) {
        if (!BucketAnswers(*store, m_bucket)) {
            CheckStatus(kStatusNotFound, "HeadBucket", {m_bucket, ""}, *store);
        }
        return std::nullopt;
    }
    return Fetch(interruption);
}

Manifest BackupStore::Require(const Interruption& interruption) const {
    auto manifest = Load(interruption);
    if (!manifest) {
        throw Failure(ExitCode::NotFound, "there is no backup at " +
                                              ObjectUrl{m_bucket, m_base}.Shown() +
                                              ", or its first run did not end");
    }
    return std::move(*manifest);
}

void BackupStore::Save(MIRQOSInterface& store, const Manifest& manifest) const {
    const ObjectUrl url = ManifestUrl();
    const std::string text = FormatManifest(manifest);
    CloudStoreWriteObjectContext write;
    write.m_pszBucket = url.bucket.c_str();
    write.m_pszKey = url.key.c_str();
    write.m_pBuf = reinterpret_cast<const unsigned char*>(text.data());
    write.m_nBufLen = text.size();
    CheckStatus(store.WriteObject(&write), "WriteObject", url, store);
}

std::string BackupStore::Fetch(const Interruption& interruption) const {
    const ObjectUrl url = ManifestUrl();
    std::string text;
    RangedDownload download;
    download.stopped = [&] { return interruption.Requested(); };
    download.take = [&](std::uint64_t offset, const unsigned char* from, std::size_t size) {
        text.resize(static_cast<std::size_t>(offset));
        text.append(reinterpret_cast<const char*>(from), size);
    };
    const StorePointer store = m_session.OpenStore(m_bucket, RangedDownload::kRoom);
    download.makeReader = [&]() -> RangeReader {
        return [&](std::uint64_t first, std::uint64_t last, unsigned char* to) {
            return ReadRange(*store, url, first, last, to);
        };
    };
    const RangedDownload::Result result = download.Run();
    interruption.CheckPoint();
    if (result.verdict == ReadPlan::Verdict::Failed) {
        CheckStatus(result.status, "ReadObject", url, *store);
    }
    // an object that changed meanwhile fails its own check
    return text;
}

}  // namespace Mirqos::Tool
