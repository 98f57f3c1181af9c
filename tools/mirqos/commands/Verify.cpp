#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/BackupPath.h"
#include "tools/mirqos/BackupReader.h"
#include "tools/mirqos/Console.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Folder.h"
#include "tools/mirqos/FolderWalk.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/Listing.h"
#include "tools/mirqos/Patience.h"
#include "tools/mirqos/Progress.h"
#include "tools/mirqos/SteadyFile.h"
#include "tools/mirqos/Stopwatch.h"
#include "tools/mirqos/StoredKey.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/TroubleReport.h"
#include "tools/mirqos/WorkCrew.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

/// How one side differs from the manifest.
struct Findings {
    std::vector<std::string> missing;
    std::vector<std::string> differing;
    std::vector<std::string> extra;

    void Sort() {
        for (auto* const paths : {&missing, &differing, &extra}) {
            std::sort(paths->begin(), paths->end());
        }
    }
    bool Empty() const { return missing.empty() && differing.empty() && extra.empty(); }

    Json Describe() const {
        return {{"missing", List(missing)}, {"differing", List(differing)}, {"extra", List(extra)}};
    }
    /// A line for each; `where` stands behind what it is.
    std::string Lines(const std::string& where) const {
        return Lines(missing, "missing" + where) + Lines(differing, "differs" + where) +
               Lines(extra, "extra" + where);
    }

private:
    /// Names of local files may be no UTF-8.
    static Json List(const std::vector<std::string>& paths) {
        Json list = Json::array();
        for (const std::string& path : paths) {
            list.push_back(IsUtf8(path) ? path : EscapeForeignBytes(path));
        }
        return list;
    }
    static std::string Lines(const std::vector<std::string>& paths, const std::string& what) {
        std::string lines;
        for (const std::string& path : paths) {
            lines += what + "  " + Printable(path) + "\n";
        }
        return lines;
    }
};

class Verify {
public:
    explicit Verify(const Invocation& invocation)
        : m_invocation(invocation),
          m_prefix(ParsePrefixUrl(invocation.operands[0])),
          m_folder(invocation.operands.size() > 1 ? std::optional<std::string>(invocation.Folder(1))
                                                  : std::nullopt) {}

    void Run() {
        {
            Progress progress(m_invocation.settings.progress);
            progress.Wait("verifying", m_prefix.Shown(), std::nullopt);
            const Session session(m_invocation.settings);
            const BackupStore backup(session, m_prefix);
            const Manifest manifest = backup.Require(m_invocation.interruption);
            m_runEnded = manifest.runEnded;
            auto files = LiveFiles(manifest);
            m_count = files.size();
            if (m_folder) {
                CompareFolder(*m_folder, files, progress);
            }
            auto listed = List(session, backup, manifest, files);
            ReadBack(session, backup, listed, progress);
        }
        Tell();
    }

private:
    /// Which files have an object of their size; what misses one, and what is there besides, is
    /// noted.
    std::vector<StoredFile> List(const Session& session, const BackupStore& backup,
                                 const Manifest& manifest, const std::vector<StoredFile>& files) {
        const std::int32_t provider = m_invocation.settings.provider;
        const StorePointer store = session.OpenStore(backup.Bucket(), 0);
        auto objects =
            ListAll(*store, {backup.Bucket(), backup.Base()}, provider, m_invocation.interruption);
        std::vector<StoredFile> promising;
        for (const StoredFile& file : files) {
            const auto object = objects.find(StoredKey(provider, backup.Base() + file.path));
            if (object == objects.end()) {
                m_objects.missing.push_back(file.path);
            } else if (object->second != file.record.state.size) {
                m_objects.differing.push_back(file.path);
            } else {
                promising.push_back(file);
            }
        }
        objects.erase(StoredKey(provider, backup.ManifestUrl().key));
        for (const auto& [path, record] : manifest.files) {
            objects.erase(StoredKey(provider, backup.Base() + path));
        }
        for (const auto& [key, size] : objects) {
            m_objects.extra.push_back(ListedKey(provider, key).substr(backup.Base().size()));
        }
        return promising;
    }

    void ReadBack(const Session& session, const BackupStore& backup, std::vector<StoredFile>& files,
                  Progress& progress) {
        progress.Count("verifying", m_prefix.Shown(), TotalSize(files));
        const BackupReader reader(session, backup, m_invocation.settings, m_invocation.interruption,
                                  progress);
        const ObjectReader::Sink nowhere = [](std::uint64_t, const unsigned char*, std::size_t) {};
        reader.ForEach(files, [&](std::size_t, const StoredFile& file, const ReadStored& read) {
            ObjectState state = ObjectState::Missing;
            try {
                state = read(file, nowhere);
            } catch (const Failure& failure) {
                Bear(file.path, failure);
                return;
            }
            m_patience.Renew();
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (state == ObjectState::Good) {
                ++m_good;
                m_goodBytes += file.record.state.size;
            } else {
                auto& where =
                    state == ObjectState::Missing ? m_objects.missing : m_objects.differing;
                where.push_back(file.path);
            }
        });
    }

    void CompareFolder(const std::string& folder, const std::vector<StoredFile>& files,
                       Progress& progress) {
        FolderContents contents =
            WalkFolder(folder, [this] { m_invocation.interruption.CheckPoint(); });
        m_troubles = contents.unread;
        std::vector<StoredFile> there;
        for (const StoredFile& file : files) {
            const auto found = contents.files.find(file.path);
            if (found == contents.files.end()) {
                if (!contents.IsUnknown(file.path)) {
                    m_local.missing.push_back(file.path);
                }
                continue;
            }
            if (found->second.size == file.record.state.size) {
                there.push_back(file);
            } else {
                m_local.differing.push_back(file.path);
            }
            contents.files.erase(found);
        }
        for (const auto& [path, state] : contents.files) {
            m_local.extra.push_back(path);
        }
        progress.Count("reading", folder, TotalSize(there));
        DoAll(there.size(), m_invocation.settings.threads, [&]() -> Worker {
            return [&](std::size_t index) { CompareFile(folder, there[index], progress); };
        });
    }

    void CompareFile(const std::string& folder, const StoredFile& file, Progress& progress) {
        try {
            const FileRecord now = DigestFile(JoinPath(folder, file.path), [&](std::size_t size) {
                m_invocation.interruption.CheckPoint();
                progress.Add(size);
            });
            if (now.sha256 != file.record.sha256) {
                const std::lock_guard<std::mutex> lock(m_mutex);
                m_local.differing.push_back(file.path);
            }
        } catch (const Failure& failure) {
            Bear(file.path, failure);
        }
    }

    void Bear(const std::string& path, const Failure& failure) {
        Trouble trouble = m_patience.Bear(path, failure);
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_troubles.push_back(std::move(trouble));
    }

    void Tell() {
        m_objects.Sort();
        m_local.Sort();
        SortByPath(m_troubles);
        if (!WantsJson(m_invocation)) {
            WriteOutput(m_objects.Lines("") + m_local.Lines(" in the folder"));
        }
        Json document = {{"bucket", m_prefix.bucket}, {"prefix", m_prefix.key}};
        document["files"] = m_count;
        document["good"] = m_good;
        document["goodBytes"] = m_goodBytes;
        document["runEnded"] = m_runEnded;
        document["objects"] = m_objects.Describe();
        if (m_folder) {
            document["folder"] = m_local.Describe();
        }
        document["failed"] = Describe(m_troubles);
        Report(m_invocation, document,
               "verified " + m_prefix.Shown() + ": " + std::to_string(m_good) + " of " +
                   CountOf(m_count, "file") + " good, " + m_stopwatch.Describe(m_goodBytes) +
                   (m_runEnded ? "" : kUnfinishedNote));
        if (!m_objects.Empty() || !m_local.Empty()) {
            Show(m_troubles);
            throw Failure(ExitCode::Differs,
                          m_objects.Empty() ? "the folder is not what the backup holds"
                                            : "what is stored is not what the backup's manifest "
                                              "says");
        }
        EndWith(m_troubles,
                "of the objects, and of the names in the folder, could not be compared");
    }

    const Invocation& m_invocation;
    const ObjectUrl m_prefix;
    const std::optional<std::string> m_folder;
    const Stopwatch m_stopwatch;
    bool m_runEnded = true;
    Patience m_patience;
    std::mutex m_mutex;
    Findings m_objects;
    Findings m_local;
    Troubles m_troubles;
    std::uint64_t m_count = 0;
    std::uint64_t m_good = 0;
    std::uint64_t m_goodBytes = 0;
};

void Run(const Invocation& invocation) {
    Verify(invocation).Run();
}

}  // namespace

Command VerifyCommand() {
    return {"verify",
            "s3://BUCKET[/PREFIX] [FOLDER]",
            "read a backup back and compare digests",
            "Reads every object of the backup and compares its SHA-256 digest with the one\n"
            "that was taken of the file. Says which objects are missing, differ, or are there\n"
            "besides; the objects of files that are gone are none of these. With FOLDER it\n"
            "compares the files there with the backup as well, and not their times.\n"
            "\n"
            "The exit code is 5 where anything was found. What could not be compared is named\n"
            "as well; where nothing was found the exit code is 1 then if the service refused\n"
            "an object, else 3. A service that refuses one after another ends the run.\n"
            "\n"
            "It lists the objects, with the limits to the length of keys that ls names.\n"
            "\n"
            "Examples:\n"
            "  mirqos verify s3://backups/documents\n"
            "  mirqos verify --json s3://backups/home /home\n",
            1,
            2,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
