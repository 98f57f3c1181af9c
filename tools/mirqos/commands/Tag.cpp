#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Console.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/PackedTexts.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/StoredKey.h"
#include "tools/mirqos/Tags.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

Json Document(const ObjectUrl& url, const std::vector<Tag>& tags) {
    Json list = Json::array();
    for (const Tag& tag : tags) {
        Json entry;
        AddText(entry, "name", tag.name);
        AddText(entry, "value", tag.value);
        list.push_back(entry);
    }
    return {{"bucket", url.bucket}, {"key", url.key}, {"tags", list}};
}

void Get(const Invocation& invocation, MIRQOSInterface& store, const ObjectUrl& url) {
    const std::string stored = StoredKey(invocation.settings.provider, url.key);
    GetObjectTaggingContext get;
    get.m_pszBucket = url.bucket.c_str();
    get.m_pszKey = stored.c_str();
    CheckStatus(store.GetObjectTagging(&get), "GetObjectTagging", url, store);
    std::vector<Tag> tags;
    std::string lines;
    for (const std::string& packed : UnpackTexts(get.m_szTags)) {
        tags.push_back(UnpackTag(packed));
        lines += Printable(tags.back().name) + "=" + Printable(tags.back().value) + "\n";
    }
    WriteOutput(WantsJson(invocation) ? Dump(Document(url, tags)) : lines);
    if (tags.empty() && !WantsJson(invocation)) {
        invocation.Report(url.Shown() + " has no tags");
    }
}

void Set(const Invocation& invocation, MIRQOSInterface& store, const ObjectUrl& url,
         const std::vector<Tag>& tags) {
    const std::string stored = StoredKey(invocation.settings.provider, url.key);
    std::vector<std::string> texts;
    texts.reserve(tags.size());
    for (const Tag& tag : tags) {
        texts.push_back(tag.Packed());
    }
    const std::string packed = PackTexts(texts);
    PutObjectTaggingContext put;
    put.m_pszBucket = url.bucket.c_str();
    put.m_pszKey = stored.c_str();
    put.m_pTags = packed.data();
    CheckStatus(store.PutObjectTagging(&put), "PutObjectTagging", url, store);
    Report(invocation, Document(url, tags),
           url.Shown() + " has " + std::to_string(tags.size()) +
               (tags.size() == 1 ? " tag now" : " tags now"));
}

void Run(const Invocation& invocation) {
    const std::vector<std::string>& words = invocation.operands;
    const bool set = words[0] == "set";
    if (!set && words[0] != "get") {
        throw Failure(ExitCode::Usage, "tag takes get or set, and then the object's address");
    }
    const ObjectUrl url = ParseObjectUrl(words[1]);
    if (!set && words.size() > 2) {
        throw Failure(ExitCode::Usage, "tag get takes one address");
    }
    std::vector<Tag> tags;
    for (std::size_t i = 2; i < words.size(); ++i) {
        tags.push_back(ParseTag(words[i]));
    }
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore(url.bucket, 0);
    if (set) {
        Set(invocation, *store, url, tags);
    } else {
        Get(invocation, *store, url);
    }
}

}  // namespace

Command TagCommand() {
    return {"tag",
            "get|set s3://BUCKET/KEY [TAG...]",
            "show or replace an object's tags",
            "get shows the tags, one NAME=VALUE on a line. set gives the object the tags that\n"
            "are named, as NAME=VALUE or NAME:VALUE, in place of all that it had; without any\n"
            "it takes them away. The first of the characters \"=\" and \":\" ends the name, so a\n"
            "name that set gives has neither. The library hands out up to 2600 bytes of tags,\n"
            "and cuts a name that has a \":\" there.\n"
            "\n"
            "Examples:\n"
            "  mirqos tag set s3://photos/2024/holiday.jpg place=Rome year=2024\n"
            "  mirqos tag get s3://photos/2024/holiday.jpg\n",
            2,
            kAnyNumber,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
