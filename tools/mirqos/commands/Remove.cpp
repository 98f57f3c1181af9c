#include <array>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Console.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/KeyList.h"
#include "tools/mirqos/LocalFile.h"
#include "tools/mirqos/ObjectRemoval.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

std::string ReadAllInput() {
    std::string text;
    std::array<char, 65536> buffer{};
    while (true) {
        const auto count = ReadInput(buffer.data(), buffer.size());
        if (!count) {
            throw Failure(ExitCode::LocalFile, "the keys could not be read from the input stream");
        }
        if (*count == 0) {
            return text;
        }
        text.append(buffer.data(), *count);
    }
}

std::string ReadFile(const std::string& name) {
    LocalFile file = LocalFile::OpenForReading(name);
    std::string text(static_cast<std::size_t>(file.Size()), '\0');
    text.resize(file.Read(reinterpret_cast<unsigned char*>(text.data()), text.size()));
    return text;
}

class Remove {
public:
    explicit Remove(const Invocation& invocation)
        : m_invocation(invocation), m_verify(invocation.arguments.Has("verify")) {
        const auto file = invocation.arguments.Value("keys-from");
        if (!file) {
            TakeAddresses();
            return;
        }
        if (invocation.operands.size() != 1) {
            throw Failure(ExitCode::Usage, "with --keys-from, rm takes one bucket's address");
        }
        m_bucket = ParseBucketUrl(invocation.operands[0]);
        m_keys = ParseKeyLines(*file == "-" ? ReadAllInput() : ReadFile(*file));
    }

    void Run() const {
        const Session session(m_invocation.settings);
        const StorePointer store = session.OpenStore(m_bucket.bucket, 0);
        if (m_keys.size() == 1) {
            RemoveObject(*store, {m_bucket.bucket, m_keys.front()});
        } else {
            RemoveObjects(*store, m_invocation.settings.provider, m_bucket.bucket, m_keys,
                          m_invocation.interruption);
        }
        const auto remaining = m_verify ? Remaining(*store) : std::vector<std::string>();
        Tell(remaining);
    }

private:
    void TakeAddresses() {
        for (const std::string& operand : m_invocation.operands) {
            const ObjectUrl url = ParseObjectUrl(operand);
            if (!m_keys.empty() && url.bucket != m_bucket.bucket) {
                throw Failure(ExitCode::Usage, "rm takes objects of one bucket at a time");
            }
            m_bucket.bucket = url.bucket;
            m_keys.push_back(url.key);
        }
    }

    /// The keys of which the service says that they still exist.
    std::vector<std::string> Remaining(MIRQOSInterface& store) const {
        std::vector<std::string> remaining;
        for (const std::string& key : m_keys) {
            m_invocation.interruption.CheckPoint();
            if (ObjectAnswers(store, {m_bucket.bucket, key})) {
                remaining.push_back(key);
            }
        }
        return remaining;
    }

    void Tell(const std::vector<std::string>& remaining) const {
        Json document = {{"bucket", m_bucket.bucket}, {"requested", m_keys.size()}};
        if (m_verify) {
            document["remaining"] = remaining;
        }
        if (remaining.empty() || WantsJson(m_invocation)) {
            Report(m_invocation, document, Line());
        }
        if (!remaining.empty()) {
            const ObjectUrl first{m_bucket.bucket, remaining.front()};
            throw Failure(ExitCode::OperationFailed,
                          std::to_string(remaining.size()) + " of " + Count() +
                              " still exist though the service accepted their removal, the first "
                              "is " +
                              first.Shown());
        }
    }

    std::string Line() const {
        if (m_keys.size() == 1) {
            return "removed " + ObjectUrl{m_bucket.bucket, m_keys.front()}.Shown();
        }
        return m_verify
                   ? "removed " + Count() + " from " + m_bucket.Shown() +
                         " and saw that they are gone"
                   : "the service accepted the removal of " + Count() + " from " + m_bucket.Shown();
    }

    std::string Count() const { return std::to_string(m_keys.size()) + " objects"; }

    const Invocation& m_invocation;
    const bool m_verify;
    ObjectUrl m_bucket;
    std::vector<std::string> m_keys;
};

void Run(const Invocation& invocation) {
    Remove(invocation).Run();
}

}  // namespace

Command RemoveCommand() {
    return {"rm",
            "s3://BUCKET/KEY...",
            "remove objects",
            "Removes objects of one bucket, without asking: those of the addresses, or with\n"
            "--keys-from those whose keys stand in a file. Several go out in requests of up\n"
            "to 1000 keys, with --provider gcs one by one. To remove what does not exist is a\n"
            "success, as S3 defines it.\n"
            "\n"
            "A service can accept such a request and still not remove some of the objects,\n"
            "and the library does not tell which. So rm says that the removal was accepted;\n"
            "with --verify it asks for each object afterwards, one request each, and fails\n"
            "where one is still there.\n"
            "\n"
            "Examples:\n"
            "  mirqos rm s3://photos/2024/holiday.jpg\n"
            "  mirqos rm --verify s3://photos --keys-from old-keys.txt\n",
            1,
            kAnyNumber,
            {{"keys-from", "FILE", "",
              "keys in UTF-8, one on a line, or - for the input stream; the operand is the "
              "bucket's address then"},
             {"verify", "", "", "see afterwards that the objects are gone"},
             JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
