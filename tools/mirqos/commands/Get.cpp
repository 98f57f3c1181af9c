#include <limits>
#include <memory>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/Listing.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/PartFile.h"
#include "tools/mirqos/Progress.h"
#include "tools/mirqos/RangeRead.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Stopwatch.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

std::optional<std::uint64_t> GivenSize(const Invocation& invocation) {
    const auto text = invocation.arguments.Value("size");
    if (!text) {
        return std::nullopt;
    }
    const auto size = ParseNumber(*text, 0, std::numeric_limits<std::int64_t>::max());
    if (!size) {
        throw Failure(ExitCode::Usage, "--size has to be a number of bytes");
    }
    return size;
}

/// Whether an object is empty whose first range could not be read. No range of an empty object can
/// be, and the status that says so says other things as well. But a range that ends before it
/// begins is none, as HTTP has it, and is answered with the whole object: a success without a byte
/// is proof. Services that refuse such a range prove nothing, so this never says yes wrongly.
bool IsProvenEmpty(MIRQOSInterface& store, const ObjectUrl& url) {
    const auto buffer = std::make_unique<unsigned char[]>(RangedDownload::kRoom);
    const RangeAnswer answer = ReadRange(store, url, 1, 0, buffer.get());
    return answer.status == 0 && answer.count == 0;
}

class Get {
public:
    explicit Get(const Invocation& invocation)
        : m_invocation(invocation),
          m_url(ParseObjectUrl(invocation.operands[0])),
          m_given(GivenSize(invocation)) {}

    void Run() {
        const Stopwatch stopwatch;
        PartFile file(m_invocation.operands[1]);
        const auto cleanup =
            m_invocation.interruption.OnAbruptEnd([name = file.PartName()] { RemoveFile(name); });
        std::uint64_t size = 0;
        {
            Progress progress(m_invocation.settings.progress);
            const Session session(m_invocation.settings);
            m_listed = m_given ? std::nullopt : LookUpSize(session);
            progress.Count("getting", m_url.key, Size());
            size = Download(session, file, progress);
            m_invocation.interruption.CheckPoint();
            file.Commit();
        }
        m_invocation.Report("got " + m_url.Shown() + ", " + stopwatch.Describe(size));
    }

private:
    std::optional<std::uint64_t> LookUpSize(const Session& session) const {
        const StorePointer store = session.OpenStore(m_url.bucket, 0);
        return ListedSize(*store, m_url, m_invocation.settings.provider);
    }

    std::optional<std::uint64_t> Size() const { return m_given ? m_given : m_listed; }

    std::uint64_t Download(const Session& session, PartFile& file, Progress& progress) const {
        RangedDownload download;
        download.threads = m_invocation.settings.threads;
        download.size = Size();
        download.stopped = [this] { return m_invocation.interruption.Requested(); };
        download.take = [&](std::uint64_t offset, const unsigned char* from, std::size_t size) {
            file.WriteAt(offset, from, size);
            progress.Add(size);
        };
        download.makeReader = [&]() -> RangeReader {
            // a store of its own, because a store has one buffer for what it reads
            std::shared_ptr<MIRQOSInterface> store =
                session.OpenStore(m_url.bucket, RangedDownload::kRoom);
            return [this, store](std::uint64_t first, std::uint64_t last, unsigned char* to) {
                return ReadRange(*store, m_url, first, last, to);
            };
        };
        const RangedDownload::Result result = download.Run();
        m_invocation.interruption.CheckPoint();
        switch (result.verdict) {
            case ReadPlan::Verdict::Complete:
                return result.size;
            case ReadPlan::Verdict::Failed:
                return AfterFailure(session, result);
            case ReadPlan::Verdict::Changed:
                throw Failure(ExitCode::OperationFailed,
                              m_url.Shown() + " changed while it was read; get it again");
            case ReadPlan::Verdict::WrongSize:
                break;
        }
        throw Failure(ExitCode::OperationFailed,
                      m_url.Shown() + " does not have the " + std::to_string(Size().value_or(0)) +
                          (m_given ? " bytes of --size"
                                   : " bytes that the listing gave; where it was not replaced "
                                     "meanwhile, give its size with --size"));
    }

    /// The size, 0, where the failure means that the object is empty.
    std::uint64_t AfterFailure(const Session& session, const RangedDownload::Result& result) const {
        const StorePointer store = session.OpenStore(m_url.bucket, RangedDownload::kRoom);
        const bool mayBeEmpty = result.failedAtOnce && result.status == kStatusUnknown;
        if (mayBeEmpty && (Size() ? *Size() == 0 : IsProvenEmpty(*store, m_url))) {
            return 0;
        }
        if (mayBeEmpty) {
            FailOperation(result.status, "ReadObject", m_url,
                          ExplainStatus(result.status) +
                              "; an empty object gives this status too: where you know that it is "
                              "one, say --size 0");
        }
        CheckStatus(result.status, "ReadObject", m_url, *store);
        return 0;
    }

    const Invocation& m_invocation;
    const ObjectUrl m_url;
    const std::optional<std::uint64_t> m_given;
    std::optional<std::uint64_t> m_listed;
};

void Run(const Invocation& invocation) {
    Get(invocation).Run();
}

}  // namespace

Command GetCommand() {
    return {"get",
            "s3://BUCKET/KEY FILE",
            "fetch an object into a file",
            "Fetches the object in ranges of 8 MiB, --threads of them at a time. The bytes\n"
            "are collected in FILE.part, which takes the name FILE when the object is\n"
            "complete and is removed when something fails; a file that has the name already\n"
            "stays as it is until then.\n"
            "\n"
            "The size comes from --size or else from the bucket's listing, and the object has\n"
            "to have it. Where the credentials may not list, an answer shorter than its range\n"
            "ends the object; some services then give no way to tell an empty object from one\n"
            "that cannot be read, and an empty object needs --size 0. The listing is of what\n"
            "begins with KEY, with the limits to the length of keys that ls names.\n"
            "\n"
            "Examples:\n"
            "  mirqos get s3://photos/2024/holiday.jpg copy.jpg\n"
            "  mirqos get --threads 8 s3://backups/disk.img disk.img\n",
            2,
            2,
            {{"size", "BYTES", "", "what the object has to have, in bytes"}},
            &Run};
}

}  // namespace Mirqos::Tool
