#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

void Run(const Invocation& invocation) {
    const ObjectUrl url = ParseObjectUrl(invocation.operands[0]);
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore(url.bucket, 0);
    CloudStoreDeleteObjectContext remove;
    remove.m_pszBucket = url.bucket.c_str();
    remove.m_pszKey = url.key.c_str();
    CheckStatus(store->DeleteObject(&remove), "DeleteObject", url, *store);
    invocation.Report("removed " + url.Shown());
}

}  // namespace

Command RemoveCommand() {
    return {"rm",
            "s3://BUCKET/KEY",
            "remove an object",
            "Removes one object, without asking. Removing an object that does not exist is a\n"
            "success, as S3 defines it.\n"
            "\n"
            "Example:\n"
            "  mirqos rm s3://photos/2024/holiday.jpg\n",
            1,
            {},
            &Run};
}

}  // namespace Mirqos::Tool
