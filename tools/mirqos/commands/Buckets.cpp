#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Console.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/PackedTexts.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

std::vector<std::string> Names(MIRQOSInterface& store) {
    CloudStoreListBucketContext list;
    if (const std::int32_t status = store.ListBucket(&list); status != 0) {
        FailOperation(status, "ListBucket", {}, ExplainStatus(status));
    }
    std::vector<std::string> names = UnpackTexts(list.m_pBucketNames);
    store.ReleaseBucketList(&list);
    return names;
}

void Run(const Invocation& invocation) {
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore("", 0);
    const std::vector<std::string> names = Names(*store);
    if (WantsJson(invocation)) {
        Json buckets = Json::array();
        for (const std::string& name : names) {
            Json bucket;
            AddText(bucket, "bucket", name);
            buckets.push_back(bucket);
        }
        WriteOutput(Dump({{"buckets", buckets}}));
        return;
    }
    std::string lines;
    for (const std::string& name : names) {
        lines += "s3://" + Printable(name) + "\n";
    }
    WriteOutput(lines);
    if (names.empty()) {
        invocation.Report("there are no buckets");
    }
}

}  // namespace

Command BucketsCommand() {
    return {"buckets",
            "",
            "list the account's buckets",
            "Lists the buckets of the account that the credentials belong to.\n"
            "\n"
            "Example:\n"
            "  mirqos buckets\n",
            0,
            0,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
