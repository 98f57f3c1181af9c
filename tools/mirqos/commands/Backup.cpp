#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/BackupLedger.h"
#include "tools/mirqos/BackupPlan.h"
#include "tools/mirqos/BackupStore.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/FileSender.h"
#include "tools/mirqos/Folder.h"
#include "tools/mirqos/FolderWalk.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/ObjectRemoval.h"
#include "tools/mirqos/Patience.h"
#include "tools/mirqos/Progress.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Stopwatch.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/TroubleReport.h"
#include "tools/mirqos/WorkCrew.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
constexpr std::uint64_t kUsualInFlight = 128;
constexpr std::uint64_t kMostInFlight = std::uint64_t{1} << 20U;

std::uint64_t InFlight(const Invocation& invocation) {
    const auto text = invocation.arguments.Value("in-flight");
    if (!text) {
        return kUsualInFlight * kMiB;
    }
    const auto number = ParseNumber(*text, 1, kMostInFlight);
    if (!number) {
        throw Failure(ExitCode::Usage, "--in-flight has to be a number of MiB from 1 to " +
                                           std::to_string(kMostInFlight));
    }
    return *number * kMiB;
}

class Backup {
public:
    explicit Backup(const Invocation& invocation)
        : m_invocation(invocation),
          m_folder(invocation.Folder(0)),
          m_prefix(ParsePrefixUrl(invocation.operands[1])),
          m_inFlight(InFlight(invocation)) {}

    void Run() {
        {
            Progress progress(m_invocation.settings.progress);
            progress.Wait("looking through", m_folder, std::nullopt);
            const FolderContents contents =
                WalkFolder(m_folder, [this] { m_invocation.interruption.CheckPoint(); });
            const Session session(m_invocation.settings);
            const BackupStore backup(session, m_prefix);
            const auto before = Before(backup);
            m_plan = PlanBackup(contents, before.value_or(Manifest()),
                                {backup.Base(), m_invocation.settings.provider,
                                 m_invocation.arguments.Has("rehash"), Fresh()});
            m_leftOut = contents.leftOut;
            m_troubles = contents.unread;
            m_troubles.insert(m_troubles.end(), m_plan.refused.begin(), m_plan.refused.end());
            // handed over parts run on the store's threads
            const StorePointer store =
                session.OpenStore(backup.Bucket(), 0, m_invocation.settings.threads);
            BackupLedger ledger([&](const Manifest& manifest) { backup.Save(*store, manifest); },
                                m_plan, before == m_plan.manifest);
            Send(backup, *store, ledger, progress);
            End(backup, *store, ledger);
        }
        Tell();
    }

private:
    bool Fresh() const { return m_invocation.arguments.Has("fresh"); }

    /// A fresh run has to know of stored objects too, though it trusts none.
    std::optional<Manifest> Before(const BackupStore& backup) const {
        return Fresh() ? backup.LoadWhole(m_invocation.interruption)
                       : backup.Load(m_invocation.interruption);
    }

    void Send(const BackupStore& backup, MIRQOSInterface& store, BackupLedger& ledger,
              Progress& progress) {
        std::uint64_t total = 0;
        for (const BackupPlan::Task& task : m_plan.tasks) {
            total += task.size;
        }
        // one large file at a time, with all threads; then the others, a thread for each
        const auto whole =
            std::partition(m_plan.tasks.begin(), m_plan.tasks.end(),
                           [](const auto& task) { return task.size > UploadWay::kLargestWhole; });
        const auto large = static_cast<std::size_t>(whole - m_plan.tasks.begin());
        progress.Count("backing up", m_folder, total);
        const FileSender sender(store, m_invocation.settings.threads, m_inFlight,
                                m_invocation.interruption, progress);
        const auto make = [&](std::size_t first) {
            return [&, first]() -> Worker {
                return [&, first](std::size_t index) {
                    SendOne(m_plan.tasks[first + index], backup, sender, ledger);
                };
            };
        };
        try {
            DoAll(large, 1, make(0));
            DoAll(m_plan.tasks.size() - large, m_invocation.settings.threads, make(large));
        } catch (const Failure& failure) {
            // where nobody answers, to try this too would only take longer
            if (failure.Status() != kStatusNoAnswer) {
                ledger.SaveUnfinished();
            }
            throw;
        }
    }

    void SendOne(const BackupPlan::Task& task, const BackupStore& backup, const FileSender& sender,
                 BackupLedger& ledger) {
        m_invocation.interruption.CheckPoint();
        std::optional<FileSender::Result> result;
        try {
            result = sender.Send(JoinPath(m_folder, task.path), backup.UrlOf(task.path),
                                 task.stored, [&] { ledger.Replace(task); });
        } catch (const Failure& failure) {
            Trouble trouble = m_patience.Bear(task.path, failure);
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_troubles.push_back(std::move(trouble));
            return;
        }
        ledger.Record(task, result->record);
        Count(*result);
    }

    void Count(const FileSender::Result& result) {
        if (result.sent) {
            m_patience.Renew();
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::uint64_t& files = result.sent ? m_sent : m_plan.unchanged;
        std::uint64_t& bytes = result.sent ? m_sentBytes : m_plan.unchangedBytes;
        ++files;
        bytes += result.record.state.size;
    }

    /// The manifest forgets objects when they are gone: until then a later run can remove them.
    void End(const BackupStore& backup, MIRQOSInterface& store, BackupLedger& ledger) {
        std::vector<std::string> keys;
        if (m_invocation.arguments.Has("delete")) {
            for (const std::string& path : ledger.DoomDeleted()) {
                keys.push_back(backup.Base() + path);
            }
        }
        ledger.SaveEnded();
        if (keys.empty()) {
            return;
        }
        RemoveObjects(store, m_invocation.settings.provider, backup.Bucket(), keys,
                      m_invocation.interruption);
        m_removed = keys.size();
        ledger.ForgetDeleted();
        ledger.SaveEnded();
    }

    void Tell() {
        SortByPath(m_troubles);
        Json document;
        AddText(document, "folder", m_folder);
        document["bucket"] = m_prefix.bucket;
        document["prefix"] = m_prefix.key;
        document["sent"] = m_sent;
        document["sentBytes"] = m_sentBytes;
        document["unchanged"] = m_plan.unchanged;
        document["unchangedBytes"] = m_plan.unchangedBytes;
        document["gone"] = m_plan.gone;
        document["removed"] = m_removed;
        document["leftOut"] = m_leftOut;
        document["failed"] = Describe(m_troubles);
        Report(m_invocation, document, Line());
        EndWith(m_troubles,
                "of the names in the folder could not be backed up; what was stored of "
                "them before stays");
    }

    std::string Line() const {
        std::string line = "backed up to " + m_prefix.Shown() + ": sent " +
                           CountOf(m_sent, "file") + ", " + m_stopwatch.Describe(m_sentBytes) +
                           "; " + std::to_string(m_plan.unchanged) + " unchanged";
        if (m_plan.gone > 0) {
            line += ", " + std::to_string(m_plan.gone) + " gone";
        }
        if (m_removed > 0) {
            line += ", " + CountOf(m_removed, "object") + " removed";
        }
        if (m_leftOut > 0) {
            line += ", " + CountOf(m_leftOut, "link") + " or special files left out";
        }
        return line;
    }

    const Invocation& m_invocation;
    const std::string m_folder;
    const ObjectUrl m_prefix;
    const std::uint64_t m_inFlight;
    const Stopwatch m_stopwatch;
    BackupPlan m_plan;
    std::uint64_t m_leftOut = 0;
    Patience m_patience;
    std::mutex m_mutex;
    Troubles m_troubles;
    std::uint64_t m_sent = 0;
    std::uint64_t m_sentBytes = 0;
    std::uint64_t m_removed = 0;
};

void Run(const Invocation& invocation) {
    Backup(invocation).Run();
}

}  // namespace

Command BackupCommand() {
    return {"backup",
            "FOLDER s3://BUCKET[/PREFIX]",
            "back up a folder",
            "Stores each file of the folder, and of those in it, as an object: PREFIX, a\n"
            "slash and the file's path. The object .mirqos/manifest under the prefix says of\n"
            "each file its size, time and SHA-256 digest. A later run sends only what has\n"
            "another size, or another time and another digest.\n"
            "\n"
            "Small files go --threads at a time. Those above 8 MiB go in parts,\n"
            "asynchronously where the whole file is within --in-flight, because the library\n"
            "keeps such parts until the end; larger files go a few parts at a time, which are\n"
            "done with when they were sent. A run that is interrupted aborts what it has open\n"
            "and keeps what it has sent: the next one goes on there.\n"
            "\n"
            "A file that cannot be read, changes while it is read, or is refused by the\n"
            "service, is named at the end; what was stored of it before stays. The exit code\n"
            "is 1 then where the service refused one, else 3. A service that refuses one\n"
            "after another ends the run. Links, pipes and devices are left out and counted.\n"
            "Empty folders are remembered. Of files that are gone the objects stay, though\n"
            "restore does not bring them back, until a run with --delete. A folder .mirqos is\n"
            "the program's own and is not backed up.\n"
            "\n"
            "Two runs to one prefix at the same time spoil each other's manifest.\n"
            "\n"
            "Examples:\n"
            "  mirqos backup C:\\Users\\me\\Documents s3://backups/documents\n"
            "  mirqos backup --threads 16 --delete /home s3://backups/home\n",
            2,
            2,
            {{"in-flight", "MIB", "",
              "how much of one large file may be in memory while it is sent (default 128)"},
             {"rehash", "", "", "read every file and compare digests, whatever its time says"},
             {"fresh", "", "", "send every file, also where the manifest is damaged"},
             {"delete", "", "", "remove the objects of files that are gone"},
             JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
