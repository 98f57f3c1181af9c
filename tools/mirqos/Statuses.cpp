#include "tools/mirqos/Statuses.h"

#include <algorithm>
#include <array>

namespace Mirqos::Tool {

namespace {

// the S3 client's own numbers begin behind those that all clients of the SDK share
constexpr std::int32_t kFirstS3Status = 129;

struct Explanation {
    std::int32_t status;
    const char* text;
};

constexpr std::array<Explanation, 22> kExplanations = {{
    {-1, "the library could not carry it out; see its log"},
    {1, "the service failed internally; try again later"},
    {3, "the service does not know the access key; check it and the endpoint"},
    {6, "the service refused a value of the request; check the names and the region"},
    {8, "the service wants credentials; check both keys"},
    {9, "a name is missing, or the SDK in the library cannot send the key as it is; see its log"},
    {11, "the request came too late; check this machine's clock"},
    {12, "the service is not available at the moment; try again later"},
    {13, "the service asks for fewer requests; try again later, with fewer threads"},
    {15, "access denied: check that the keys are right and may do this with this bucket and key"},
    {kStatusNotFound, "not found: check the bucket and the key"},
    {17, "the service does not know the client; check the access key and the endpoint"},
    {19, "the service asks for fewer requests; try again later, with fewer threads"},
    {20, "the clocks of this machine and the service differ; set this machine's clock"},
    {21, "the signature is not valid; check the secret key and the region"},
    {22, "the signature does not match: check the secret key and the region"},
    {23, "the service does not know the access key; check it and the endpoint"},
    {24, "the service gave the request up as too slow; try again, with fewer threads"},
    {34, "the answer is longer than the library's record for it"},
    {50, "this version of the library does not support it"},
    {kStatusNoAnswer, "no answer: check the endpoint, the network, and HTTP against HTTPS"},
    {110, "the account has as many buckets as it may have"},
}};

}  // namespace

bool IsS3Status(std::int32_t status) {
    return status >= kFirstS3Status;
}

std::string ExplainStatus(std::int32_t status) {
    const auto* const found =
        std::find_if(kExplanations.begin(), kExplanations.end(),
                     [&](const Explanation& known) { return known.status == status; });
    if (found != kExplanations.end()) {
        return found->text;
    }
    if (IsS3Status(status)) {
        return "the service names a reason of its own, most often a bucket or a key that does not "
               "exist, or a bucket name that is taken";
    }
    return "the service gives a reason that has no number of its own (it is in the library's log); "
           "check the region, the names and the service's state";
}

}  // namespace Mirqos::Tool
