#include <algorithm>
#include <optional>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/CopyWay.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/Listing.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/PartUpload.h"
#include "tools/mirqos/Progress.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Stopwatch.h"
#include "tools/mirqos/StoredKey.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/WorkCrew.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
// of a part that is not the last, as S3 has it
constexpr std::uint64_t kFewestMiB = 5;
// what the library reads at a time where it copies through a file
constexpr std::uint64_t kReadRoom = 4 * kMiB;

std::optional<std::uint64_t> PartSize(const Invocation& invocation) {
    const auto text = invocation.arguments.Value("part-size");
    if (!text) {
        return std::nullopt;
    }
    constexpr std::uint64_t kMostMiB = CopyWay::kLargestCopy / kMiB;
    const auto number = ParseNumber(*text, kFewestMiB, kMostMiB);
    if (!number) {
        throw Failure(ExitCode::Usage, "--part-size has to be a number of MiB from " +
                                           std::to_string(kFewestMiB) + " to " +
                                           std::to_string(kMostMiB));
    }
    return *number * kMiB;
}

class Copy {
public:
    explicit Copy(const Invocation& invocation)
        : m_invocation(invocation),
          m_source(ParseObjectUrl(invocation.operands[0])),
          m_target(ParseObjectUrl(invocation.operands[1])),
          m_partSize(PartSize(invocation)) {}

    void Run() {
        {
            Progress progress(m_invocation.settings.progress);
            const Session session(m_invocation.settings);
            // of the source's bucket: there the library looks for the source's size
            const StorePointer store = session.OpenStore(m_source.bucket, kReadRoom);
            m_size = ListedSize(*store, m_source, m_invocation.settings.provider);
            // with these the library itself copies large objects, through a file
            const CopyWay way = IsGoogleCloudStorage(m_invocation.settings.provider)
                                    ? CopyWay{}
                                    : ChooseCopy(m_size.value_or(0), m_partSize);
            m_invocation.interruption.CheckPoint();
            if (way.parts == 0) {
                progress.Wait("copying", m_source.key, m_size);
                CopyWhole(*store);
            } else {
                progress.Count("copying", m_source.key, *m_size);
                CopyParts(*store, way, progress);
            }
        }
        Json document;
        document["sourceBucket"] = m_source.bucket;
        document["sourceKey"] = m_source.key;
        document["bucket"] = m_target.bucket;
        document["key"] = m_target.key;
        document["bytes"] = nullptr;
        if (m_size) {
            document["bytes"] = *m_size;
        }
        Report(m_invocation, document,
               "copied " + m_source.Shown() + " to " + m_target.Shown() +
                   (m_size ? ", " + m_stopwatch.Describe(*m_size) : ""));
    }

private:
    void CopyWhole(MIRQOSInterface& store) const {
        CloudStoreCopyObjectContext copy;
        copy.m_pszSrcBucket = m_source.bucket.c_str();
        copy.m_pszSrcKey = m_source.key.c_str();
        copy.m_pszDstBucket = m_target.bucket.c_str();
        copy.m_pszDstKey = m_target.key.c_str();
        copy.m_bIgnoreMissingSource = false;
        copy.m_nSrcSize = m_size.value_or(0);
        copy.m_nPartSize = m_partSize.value_or(0);
        const std::int32_t status = store.CopyObject(&copy);
        if (status != 0 && !BucketAnswers(store, m_target.bucket)) {
            CheckStatus(status, "CopyObject", m_target, store);
        }
        CheckStatus(status, "CopyObject", m_source, store);
    }

    void CopyParts(MIRQOSInterface& store, const CopyWay& way, Progress& progress) const {
        // the library passes it on as it is
        const std::string source =
            m_source.bucket + "/" + StoredKey(m_invocation.settings.provider, m_source.key);
        PartUpload upload(store, m_target, way.partSize, m_invocation.interruption);
        DoAll(static_cast<std::size_t>(way.parts), m_invocation.settings.threads, [&]() -> Worker {
            return [&](std::size_t index) {
                m_invocation.interruption.CheckPoint();
                const std::uint64_t first = way.partSize * index;
                const std::uint64_t end = std::min(first + way.partSize, *m_size);
                upload.Copy(static_cast<std::int32_t>(index) + 1, source, first, end - 1);
                progress.Add(end - first);
            };
        });
        m_invocation.interruption.CheckPoint();
        upload.Complete(way.parts);
    }

    const Invocation& m_invocation;
    const ObjectUrl m_source;
    const ObjectUrl m_target;
    const std::optional<std::uint64_t> m_partSize;
    const Stopwatch m_stopwatch;
    std::optional<std::uint64_t> m_size;
};

void Run(const Invocation& invocation) {
    Copy(invocation).Run();
}

}  // namespace

Command CopyCommand() {
    return {"cp",
            "s3://BUCKET/KEY s3://BUCKET/KEY",
            "copy an object",
            "Copies the first object to the second address, within the service. Objects above\n"
            "5 GiB are copied in parts of 512 MiB, --threads of them at a time; the size is\n"
            "that of the bucket's listing, and without the right to list one request has to\n"
            "do. With --provider gcs there are no such parts: an object above 8 MiB, or above\n"
            "--part-size, goes through a temporary file of this machine.\n"
            "\n"
            "The listing is of what begins with KEY, with the limits to the length of keys\n"
            "that ls names.\n"
            "\n"
            "An object that is replaced while it is copied in parts can give a mixture.\n"
            "\n"
            "Examples:\n"
            "  mirqos cp s3://photos/a.jpg s3://archive/2024/a.jpg\n"
            "  mirqos cp --threads 8 s3://backups/disk.img s3://archive/disk.img\n",
            2,
            2,
            {{"part-size", "MIB", "", "copy objects above this size in parts of it, 5 to 5120"},
             JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
