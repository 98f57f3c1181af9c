#include <limits>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/StoredKey.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

constexpr const char* kRuleName = "drop-unfinished-uploads";

std::int32_t Days(const Invocation& invocation) {
    const auto text = invocation.arguments.Value("days");
    const auto days =
        text ? ParseNumber(*text, 1, std::numeric_limits<std::int32_t>::max()) : std::nullopt;
    if (!days) {
        throw Failure(ExitCode::Usage, "lifecycle set needs --days with a number from 1 on");
    }
    return static_cast<std::int32_t>(*days);
}

std::string Utf8Option(const Invocation& invocation, const char* name, const char* otherwise) {
    std::string text = invocation.arguments.Value(name).value_or(otherwise);
    if (!IsUtf8(text)) {
        throw Failure(ExitCode::Usage, std::string("--") + name + " is not valid UTF-8");
    }
    return text;
}

void Run(const Invocation& invocation) {
    if (invocation.operands[0] != "set") {
        throw Failure(ExitCode::Usage, "lifecycle takes set, and then the bucket's address");
    }
    const ObjectUrl url = ParseBucketUrl(invocation.operands[1]);
    const std::int32_t days = Days(invocation);
    const std::string prefix = Utf8Option(invocation, "prefix", "");
    const std::string id = Utf8Option(invocation, "id", kRuleName);
    const std::string stored = StoredKey(invocation.settings.provider, prefix);
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore(url.bucket, 0);
    LifecycleConfigContext lifecycle;
    lifecycle.m_pszBucket = url.bucket.c_str();
    lifecycle.m_pszPrefix = stored.c_str();
    lifecycle.m_pszRuleId = id.c_str();
    lifecycle.m_nDays = days;
    CheckStatus(store->PutBucketLifecycleConfiguration(&lifecycle),
                "PutBucketLifecycleConfiguration", url, *store);
    Report(invocation, {{"bucket", url.bucket}, {"days", days}, {"prefix", prefix}, {"id", id}},
           url.Shown() + " drops unfinished uploads after " + std::to_string(days) +
               (days == 1 ? " day" : " days") +
               (prefix.empty() ? "" : ", of keys that begin with " + Printable(prefix)));
}

}  // namespace

Command LifecycleCommand() {
    return {"lifecycle",
            "set s3://BUCKET --days N",
            "have unfinished uploads dropped",
            "Gives the bucket one lifecycle rule, in place of all that it had: the service\n"
            "drops uploads in parts that are not finished N days after their start. Objects\n"
            "are never touched.\n"
            "\n"
            "Example:\n"
            "  mirqos lifecycle set s3://backups --days 7\n",
            2,
            2,
            {{"days", "N", "", "days after the start of an upload, from 1 on"},
             {"prefix", "TEXT", "", "only uploads of keys that begin with it"},
             {"id", "NAME", "", "the rule's name; without it, drop-unfinished-uploads"},
             JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
