#include <aws/s3/model/BucketLocationConstraint.h>
#include <aws/s3/model/GetBucketLocationRequest.h>

#include <cassert>
#include <string>
#include <string_view>

#include "log/ModuleLog.h"
#include "platform/bounded_copy.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/ExpectedRegion.h"

int32_t AwsS3Store::GetBucketLocation(const char* pszBucket, char* pszDestination,
                                      uint64_t nDestinationSize) {
    assert(pszBucket != nullptr && pszDestination != nullptr && m_pClient != nullptr);
    Aws::S3::Model::GetBucketLocationRequest request;
    Mirqos::SetBucketName(request, pszBucket);

    const auto outcome = m_pClient->GetBucketLocation(request);
    if (outcome.IsSuccess()) {
        const Aws::String name =
            Aws::S3::Model::BucketLocationConstraintMapper::GetNameForBucketLocationConstraint(
                outcome.GetResult().GetLocationConstraint());
        // Not every SDK looks at what a document is: of a page, or of an error under status 200,
        // the elements are then the name.
        if (name.find('<') != name.npos) {
            constexpr auto nStatus = static_cast<int32_t>(Aws::S3::S3Errors::UNKNOWN);
            ModuleLog(&g_ModuleLog, 1, "GetBucketLocation error(%d): %s - %s.", nStatus,
                      "NoLocation", "The answer names no location");
            return nStatus;
        }
        Mirqos::CopyTextOrEndProcess(pszDestination, static_cast<size_t>(nDestinationSize),
                                     name.c_str());
        return 0;
    }
    const auto& error = outcome.GetError();
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    ModuleLog(&g_ModuleLog, 1, "GetBucketLocation error(%d): %s - %s.", nStatus,
              error.GetExceptionName().c_str(), error.GetMessage().c_str());
    // A request signed for the wrong region fails with an error that the SDK does not know and
    // whose message names the right one: that is the answer.
    if (error.GetErrorType() != Aws::S3::S3Errors::UNKNOWN) {
        return nStatus;
    }
    const std::string strRegion = Mirqos::ExpectedRegion(error.GetMessage());
    if (strRegion.empty()) {
        return nStatus;
    }
    Mirqos::CopyTextOrEndProcess(pszDestination, static_cast<size_t>(nDestinationSize),
                                 strRegion.c_str());
    return 0;
}
