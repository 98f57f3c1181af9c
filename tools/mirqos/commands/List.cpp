#include <optional>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Console.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/Listing.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Paging.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

constexpr std::size_t kSizeColumns = 14;

class List {
public:
    explicit List(const Invocation& invocation)
        : m_invocation(invocation),
          m_prefix(ParsePrefixUrl(invocation.operands[0])),
          m_readable(invocation.arguments.Has("human-readable")) {
        m_token = invocation.arguments.Value("token").value_or("");
        m_onePage = invocation.arguments.Has("page") || !m_token.empty();
        if (m_token.size() > ObjectPage::kLongestToken) {
            throw Failure(ExitCode::Usage, "--token is longer than a token can be");
        }
    }

    void Run() {
        const Session session(m_invocation.settings);
        const StorePointer store = session.OpenStore(m_prefix.bucket, 0);
        std::string next;
        if (m_onePage) {
            next = Show(*store, m_token);
        } else {
            WalkPages([&](const std::string& token) {
                m_invocation.interruption.CheckPoint();
                return Show(*store, token);
            });
        }
        End(next);
    }

private:
    /// Shows the page at `token` and returns the next one's.
    std::string Show(MIRQOSInterface& store, const std::string& token) {
        const ObjectPage page(store, m_prefix, m_invocation.settings.provider, token);
        if (WantsJson(m_invocation) && !m_document) {
            m_document.emplace(WriteOutput,
                               Json{{"bucket", m_prefix.bucket}, {"prefix", m_prefix.key}},
                               "objects");
        }
        std::string lines;
        for (const CloudStoreObjInfo& object : page) {
            ++m_count;
            m_bytes += object.m_nSize;
            if (m_document) {
                Json entry;
                AddText(entry, "key", object.m_szKey);
                entry["size"] = object.m_nSize;
                m_document->Add(entry);
            } else {
                lines += Line(object);
            }
        }
        WriteOutput(lines);
        return page.Next();
    }

    std::string Line(const CloudStoreObjInfo& object) const {
        const std::string size =
            m_readable ? FormatSize(object.m_nSize) : std::to_string(object.m_nSize);
        return PadLeft(size, kSizeColumns) + "  " + Printable(object.m_szKey) + "\n";
    }

    void End(const std::string& next) {
        if (m_document) {
            Json tail = {{"count", m_count}, {"bytes", m_bytes}};
            if (m_onePage) {
                tail["nextToken"] = nullptr;
                if (!next.empty()) {
                    AddText(tail, "nextToken", next);
                }
            }
            m_document->End(tail);
            return;
        }
        m_invocation.Report(
            std::to_string(m_count) + (m_count == 1 ? " object, " : " objects, ") +
            (m_readable ? FormatSize(m_bytes) : std::to_string(m_bytes) + " bytes"));
        if (!next.empty()) {
            m_invocation.Report("there are more: go on with --token '" + Printable(next) + "'");
        }
    }

    const Invocation& m_invocation;
    const ObjectUrl m_prefix;
    const bool m_readable;
    std::string m_token;
    bool m_onePage = false;
    std::optional<JsonList> m_document;
    std::uint64_t m_count = 0;
    std::uint64_t m_bytes = 0;
};

void Run(const Invocation& invocation) {
    List(invocation).Run();
}

}  // namespace

Command ListCommand() {
    return {"ls",
            "s3://BUCKET[/PREFIX]",
            "list objects and their sizes",
            "Lists every object whose key begins with PREFIX, in the service's order: bytes\n"
            "and key, and at the end how many there are. Slashes in keys have no meaning: the\n"
            "listing goes all the way down. With --page it ends after one page of the\n"
            "service, mostly 1000 objects, and says the token with which --token goes on.\n"
            "\n"
            "-h is --human-readable here, the help is --help. A control character of a key is\n"
            "shown as \"?\"; --json gives keys to the letter.\n"
            "\n"
            "The library has room for keys of up to 1023 bytes and tokens of up to 259 (with\n"
            "some services a token is a key). A longer one ends the program.\n"
            "\n"
            "Examples:\n"
            "  mirqos ls -h s3://photos/2024/\n"
            "  mirqos ls --json s3://photos\n",
            1,
            1,
            {{"human-readable", "", "", "sizes as 1.5 KiB instead of bytes", 'h'},
             {"page", "", "", "one page only"},
             {"token", "TOKEN", "", "the page that an earlier one's answer named; means --page"},
             JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
