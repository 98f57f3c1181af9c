#include <aws/s3/model/PutBucketLifecycleConfigurationRequest.h>

#include <cassert>

#include "log/ModuleLog.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"

int32_t AwsS3Store::PutBucketLifecycleConfiguration(LifecycleConfigContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    // The days remove unfinished multipart uploads only: no expiration, no transition.
    Aws::S3::Model::AbortIncompleteMultipartUpload abort;
    abort.SetDaysAfterInitiation(pContext->m_nDays);
    Aws::S3::Model::LifecycleRuleFilter filter;
    if (pContext->m_pszPrefix != nullptr) {
        filter.SetPrefix(pContext->m_pszPrefix);
    }
    Aws::S3::Model::LifecycleRule rule;
    rule.SetAbortIncompleteMultipartUpload(abort);
    rule.SetID(pContext->m_pszRuleId != nullptr ? pContext->m_pszRuleId : "");
    rule.SetStatus(Aws::S3::Model::ExpirationStatus::Enabled);
    rule.SetFilter(filter);
    Aws::S3::Model::BucketLifecycleConfiguration configuration;
    configuration.AddRules(rule);
    Aws::S3::Model::PutBucketLifecycleConfigurationRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    request.SetLifecycleConfiguration(configuration);

    const auto outcome = m_pClient->PutBucketLifecycleConfiguration(request);
    if (outcome.IsSuccess()) {
        ModuleLog(&g_ModuleLog, 1, "%s success. Bucket[%s] Prefix[%s] ID[%s] Days[%d]",
                  "AwsS3Store::PutBucketLifecycleConfiguration", pContext->m_pszBucket,
                  pContext->m_pszPrefix, pContext->m_pszRuleId, pContext->m_nDays);
        return 0;
    }
    const int32_t nStatus = Mirqos::StatusOf(outcome);
    ModuleLog(&g_ModuleLog, 1, "Failed to PutBucketLifecycleConfiguration. ret[%d] Error:[%s].",
              nStatus, outcome.GetError().GetMessage().c_str());
    return nStatus;
}
