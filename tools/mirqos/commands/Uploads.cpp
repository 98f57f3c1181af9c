#include <cstring>
#include <optional>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Console.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Paging.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/StoredKey.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

class Uploads {
public:
    explicit Uploads(const Invocation& invocation)
        : m_invocation(invocation),
          m_prefix(ParsePrefixUrl(invocation.operands[0])),
          m_stored(StoredKey(invocation.settings.provider, m_prefix.key)) {}

    void Run() {
        const Session session(m_invocation.settings);
        const StorePointer store = session.OpenStore(m_prefix.bucket, 0);
        CloudStoreListPartContext list;
        list.m_pszBucket = m_prefix.bucket.c_str();
        list.m_pszPrefix = m_stored.c_str();
        // the record carries the marker from page to page
        WalkPages([&](const std::string&) {
            m_invocation.interruption.CheckPoint();
            CheckStatus(store->ListMultipartUploads(&list), "ListMultipartUploads",
                        {m_prefix.bucket, ""}, *store);
            Show(list.m_lstParts);
            list.m_lstParts.clear();
            return std::string(list.m_szKeyMarker);
        });
        if (m_document) {
            m_document->End({{"count", m_count}});
        } else {
            m_invocation.Report(std::to_string(m_count) +
                                (m_count == 1 ? " unfinished upload" : " unfinished uploads"));
        }
    }

private:
    void Show(const std::list<MultiPartInfo>& uploads) {
        if (WantsJson(m_invocation) && !m_document) {
            m_document.emplace(WriteOutput,
                               Json{{"bucket", m_prefix.bucket}, {"prefix", m_prefix.key}},
                               "uploads");
        }
        std::string lines;
        for (const MultiPartInfo& upload : uploads) {
            ++m_count;
            const std::string key = ListedKey(m_invocation.settings.provider, upload.m_szKey);
            if (m_document) {
                Json entry;
                AddText(entry, "key", key);
                AddText(entry, "uploadId", upload.m_szUploadId);
                m_document->Add(entry);
            } else {
                lines += Printable(upload.m_szUploadId) + "  " + Printable(key) + "\n";
            }
        }
        WriteOutput(lines);
    }

    const Invocation& m_invocation;
    const ObjectUrl m_prefix;
    const std::string m_stored;
    std::optional<JsonList> m_document;
    std::uint64_t m_count = 0;
};

void Run(const Invocation& invocation) {
    Uploads(invocation).Run();
}

}  // namespace

Command UploadsCommand() {
    return {"uploads",
            "s3://BUCKET[/PREFIX]",
            "list unfinished uploads in parts",
            "Lists the uploads in parts that were begun and neither finished nor given up, of\n"
            "keys that begin with PREFIX: upload id and key. Their parts take up room that is\n"
            "paid for; see lifecycle.\n"
            "\n"
            "The library has room for keys and ids of up to 259 bytes. A longer one is left\n"
            "out here and named in the library's log.\n"
            "\n"
            "Example:\n"
            "  mirqos uploads s3://backups\n",
            1,
            1,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
