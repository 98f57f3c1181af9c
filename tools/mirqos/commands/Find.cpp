#include "tools/mirqos/Answer.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

void Run(const Invocation& invocation) {
    const ObjectUrl url = ParsePrefixUrl(invocation.operands[0]);
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore(url.bucket, 0);
    CloudStoreSearchObjectConext search;
    search.m_pszBucket = url.bucket.c_str();
    search.m_pszKey = url.key.c_str();
    CheckStatus(store->SearchObject(&search), "SearchObject", {url.bucket, ""}, *store);
    if (search.m_bExists || WantsJson(invocation)) {
        Report(invocation,
               {{"bucket", url.bucket}, {"prefix", url.key}, {"exists", search.m_bExists}},
               "there are objects under " + url.Shown());
    }
    if (!search.m_bExists) {
        throw Failure(ExitCode::NotFound, "there is no object under " + url.Shown());
    }
}

}  // namespace

Command FindCommand() {
    return {"find",
            "s3://BUCKET[/PREFIX]",
            "tell whether any key begins with PREFIX",
            "Asks whether there is any object whose key begins with PREFIX. The exit code\n"
            "tells: 0 there is, 4 there is none, 1 the service could not be asked.\n"
            "\n"
            "Example:\n"
            "  mirqos find --quiet s3://photos/2024/ && echo yes\n",
            1,
            1,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
