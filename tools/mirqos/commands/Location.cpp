#include <array>

#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Console.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

// what the library asks hosts to have
constexpr std::size_t kRoom = 260;

void Run(const Invocation& invocation) {
    const ObjectUrl url = ParseBucketUrl(invocation.operands[0]);
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore(url.bucket, 0);
    std::array<char, kRoom> room{};
    CheckStatus(store->GetBucketLocation(url.bucket.c_str(), room.data(), room.size()),
                "GetBucketLocation", url, *store);
    const std::string location = room.data();
    Json document = {{"bucket", url.bucket}};
    AddText(document, "location", location);
    const std::string shown = location.empty() ? "(none: us-east-1 on Amazon S3)" : location;
    WriteOutput(WantsJson(invocation) ? Dump(document) : Printable(shown) + "\n");
}

}  // namespace

Command LocationCommand() {
    return {"location",
            "s3://BUCKET",
            "show where a bucket stands",
            "Shows the bucket's region, as the service names it. Buckets of Amazon's first\n"
            "region, us-east-1, have no name for it.\n"
            "\n"
            "Example:\n"
            "  mirqos location s3://photos\n",
            1,
            1,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
