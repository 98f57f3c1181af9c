#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Listing.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

std::string Describe(const ObjectUrl& url, const std::optional<std::uint64_t>& size) {
    if (!size) {
        return url.Shown() + "  size unknown: it is not listed";
    }
    const std::string bytes = std::to_string(*size) + " bytes";
    return url.Shown() + "  " + bytes + (*size < 1024 ? "" : " (" + FormatSize(*size) + ")");
}

void Run(const Invocation& invocation) {
    const ObjectUrl url = ParseObjectUrl(invocation.operands[0]);
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore(url.bucket, 0);
    const bool exists = ObjectAnswers(*store, url);
    Json document = {{"bucket", url.bucket}, {"key", url.key}, {"exists", exists}};
    if (!exists) {
        // a bucket that is not there gives the same answer
        if (!BucketAnswers(*store, url.bucket)) {
            CheckStatus(kStatusNotFound, "HeadObject", url, *store);
        }
        if (WantsJson(invocation)) {
            Report(invocation, document, "");
        }
        throw Failure(ExitCode::NotFound, "there is no object " + url.Shown());
    }
    const auto size = ListedSize(*store, url, invocation.settings.provider);
    document["size"] = size ? Json(*size) : Json(nullptr);
    Report(invocation, document, Describe(url, size));
}

}  // namespace

Command StatCommand() {
    return {"stat",
            "s3://BUCKET/KEY",
            "tell whether it exists, and its size",
            "Asks the service for the object and its bucket's listing for the size, which is\n"
            "unknown where the credentials may not list. The exit code tells as well: 0 it\n"
            "exists, 4 it does not, 1 the service could not be asked.\n"
            "\n"
            "It lists what begins with KEY, with the limits to the length of keys that ls\n"
            "names.\n"
            "\n"
            "Example:\n"
            "  mirqos stat s3://photos/2024/holiday.jpg\n",
            1,
            1,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
