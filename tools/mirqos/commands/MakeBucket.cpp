#include "tools/mirqos/Answer.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

// The one region of Amazon S3 whose buckets are made without naming it.
constexpr const char* kRegionWithoutName = "us-east-1";

/// Where the bucket has to stand, for the request; empty to leave it to the service. Amazon wants
/// the region that the request goes to, other services have names of their own.
std::string Location(const Invocation& invocation) {
    if (const auto given = invocation.arguments.Value("location")) {
        return *given;
    }
    const Settings& settings = invocation.settings;
    return settings.endpoint.empty() && settings.region != kRegionWithoutName ? settings.region
                                                                              : "";
}

void Run(const Invocation& invocation) {
    const ObjectUrl url = ParseBucketUrl(invocation.operands[0]);
    const std::string location = Location(invocation);
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore(url.bucket, 0);
    CloudStoreCreateBucketContext create;
    create.m_pszBucket = url.bucket.c_str();
    create.m_pszRegion = location.empty() ? nullptr : location.c_str();
    if (const std::int32_t status = store->CreateBucket(&create); status != 0) {
        FailOperation(status, "CreateBucket", url, ExplainStatus(status));
    }
    Report(invocation, {{"bucket", url.bucket}}, "made bucket " + url.Shown());
}

}  // namespace

Command MakeBucketCommand() {
    return {"mb",
            "s3://BUCKET",
            "make a bucket",
            "Names are unique in all of a service: 3 to 63 lower-case letters, digits, '-'\n"
            "and '.'. Making a bucket that is yours already is fine with some services and\n"
            "an error with others.\n"
            "\n"
            "Example:\n"
            "  mirqos mb s3://photos\n",
            1,
            1,
            {{"location", "NAME", "",
              "where the bucket is to stand; without it, the region on Amazon S3 and the service's "
              "own choice elsewhere"},
             JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
