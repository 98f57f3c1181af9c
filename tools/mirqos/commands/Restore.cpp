#include <mutex>
#include <set>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/BackupPath.h"
#include "tools/mirqos/BackupReader.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Folder.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/PartFile.h"
#include "tools/mirqos/PartFolder.h"
#include "tools/mirqos/Patience.h"
#include "tools/mirqos/Progress.h"
#include "tools/mirqos/Stopwatch.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/TroubleReport.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

class Restore {
public:
    explicit Restore(const Invocation& invocation)
        : m_invocation(invocation),
          m_prefix(ParsePrefixUrl(invocation.operands[0])),
          m_folder(invocation.Folder(1)) {}

    void Run() {
        {
            Progress progress(m_invocation.settings.progress);
            progress.Wait("restoring", m_prefix.Shown(), std::nullopt);
            const Session session(m_invocation.settings);
            const BackupStore backup(session, m_prefix);
            const Manifest manifest = backup.Require(m_invocation.interruption);
            m_runEnded = manifest.runEnded;
            auto files = Accepted(LiveFiles(manifest));
            progress.Count("restoring", m_prefix.Shown(), TotalSize(files));
            const PartFolder parts(m_folder, m_invocation.interruption);
            const BackupReader reader(session, backup, m_invocation.settings,
                                      m_invocation.interruption, progress);
            reader.ForEach(files,
                           [&](std::size_t index, const StoredFile& file, const ReadStored& read) {
                               RestoreOne(file, parts.NameOf(index), read);
                           });
            for (const std::string& path : manifest.emptyFolders) {
                RestoreEmptyFolder(path);
            }
        }
        Tell();
    }

private:
    /// Leaves out what must not be written.
    std::vector<StoredFile> Accepted(std::vector<StoredFile> files) {
        std::vector<StoredFile> accepted;
        std::set<std::string> names;
        for (StoredFile& file : files) {
            std::string fault = FaultOfTarget(file.path, OwnNameRules());
            if (fault.empty() && !names.insert(NameIdentity(file.path)).second) {
                fault = "another file's name differs only in upper and lower case";
            }
            if (fault.empty()) {
                accepted.push_back(std::move(file));
            } else {
                m_troubles.push_back({file.path, "is not restored: " + fault});
            }
        }
        return accepted;
    }

    /// One file's trouble keeps no other from being restored; what is no file's ends the run.
    void RestoreOne(const StoredFile& file, const std::string& partName, const ReadStored& read) {
        ObjectState state = ObjectState::Missing;
        try {
            state = Fetch(file, partName, read);
        } catch (const Failure& failure) {
            Add(m_patience.Bear(file.path, failure));
            return;
        }
        m_patience.Renew();
        switch (state) {
            case ObjectState::Good:
                Count(file);
                break;
            case ObjectState::Missing:
                Add({file.path, "is not restored: its object is missing",
                     ExitCode::OperationFailed});
                break;
            case ObjectState::Differs:
                Add({file.path, "is not restored: its object is not what was backed up",
                     ExitCode::OperationFailed});
                break;
        }
    }

    ObjectState Fetch(const StoredFile& file, const std::string& partName,
                      const ReadStored& read) const {
        const std::size_t slash = file.path.rfind('/');
        if (slash != std::string::npos) {
            MakeFolders(JoinPath(m_folder, file.path.substr(0, slash)));
        }
        PartFile part(JoinPath(m_folder, file.path), partName);
        const ObjectState state =
            read(file, [&](std::uint64_t offset, const unsigned char* from, std::size_t size) {
                part.WriteAt(offset, from, size);
            });
        if (state == ObjectState::Good) {
            part.SetModified(file.record.state.modified);
            m_invocation.interruption.CheckPoint();
            part.Commit();
        }
        return state;
    }

    void Count(const StoredFile& file) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_files;
        m_bytes += file.record.state.size;
    }

    void Add(const Trouble& trouble) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_troubles.push_back(trouble);
    }

    void RestoreEmptyFolder(const std::string& path) {
        if (const std::string fault = FaultOfTarget(path, OwnNameRules()); !fault.empty()) {
            Add({path, "is not restored: " + fault});
            return;
        }
        try {
            MakeFolders(JoinPath(m_folder, path));
        } catch (const Failure& failure) {
            Add({path, failure.what()});
        }
    }

    void Tell() {
        SortByPath(m_troubles);
        Json document = {{"bucket", m_prefix.bucket}, {"prefix", m_prefix.key}};
        AddText(document, "folder", m_folder);
        document["files"] = m_files;
        document["bytes"] = m_bytes;
        document["runEnded"] = m_runEnded;
        document["failed"] = Describe(m_troubles);
        Report(m_invocation, document,
               "restored " + CountOf(m_files, "file") + " from " + m_prefix.Shown() + ", " +
                   m_stopwatch.Describe(m_bytes) + (m_runEnded ? "" : kUnfinishedNote));
        EndWith(m_troubles, "of the backup's files and folders are not restored");
    }

    const Invocation& m_invocation;
    const ObjectUrl m_prefix;
    const std::string m_folder;
    const Stopwatch m_stopwatch;
    bool m_runEnded = true;
    Patience m_patience;
    std::mutex m_mutex;
    Troubles m_troubles;
    std::uint64_t m_files = 0;
    std::uint64_t m_bytes = 0;
};

void Run(const Invocation& invocation) {
    Restore(invocation).Run();
}

}  // namespace

Command RestoreCommand() {
    return {"restore",
            "s3://BUCKET[/PREFIX] FOLDER",
            "bring back what backup stored",
            "Brings back every file of the backup, with its time of change, and the empty\n"
            "folders. A file is collected in FOLDER/.mirqos and takes its name when it is\n"
            "whole and its SHA-256 digest is that of the backup; a file that has the name\n"
            "already is replaced then. Other files in FOLDER stay.\n"
            "\n"
            "A path that would leave FOLDER, or that this system takes for something else\n"
            "than a file of that name (on Windows also devices, drive letters, names that\n"
            "differ only in case), is not restored. Links to folders that stand in FOLDER are\n"
            "followed, wherever they lead. What is not restored is named at the end, and the\n"
            "exit code is 1 where an object is missing, not what was backed up, or refused by\n"
            "the service, else 3. A service that refuses one after another ends the run.\n"
            "Where a read fails it may list what begins with the key, with the limits to the\n"
            "length of keys that ls names.\n"
            "\n"
            "A single file is an object like any other: get fetches it.\n"
            "\n"
            "Examples:\n"
            "  mirqos restore s3://backups/documents D:\\restored\n"
            "  mirqos restore --threads 16 s3://backups/home /tmp/home\n",
            2,
            2,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
