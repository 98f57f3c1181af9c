#include <aws/s3/model/GetObjectTaggingRequest.h>
#include <aws/s3/model/PutObjectTaggingRequest.h>

#include <cassert>
#include <string>
#include <string_view>

#include "log/ModuleLog.h"
#include "platform/bounded_copy.h"
#include "store/AwsS3Store.h"
#include "store/BucketName.h"
#include "store/ObjectKey.h"
#include "store/PackedTextList.h"

using Tags = Aws::Vector<Aws::S3::Model::Tag>;

namespace {

Aws::S3::Model::Tag TagOfEntry(std::string_view entry) {
    std::string_view key = entry;
    std::string_view value = entry;
    // An entry without a colon is a tag whose key and value are both the whole entry: hosts rely on
    // it. A value may hold colons of its own.
    if (const auto nColon = entry.find(':'); nColon != std::string_view::npos) {
        key = entry.substr(0, nColon);
        value = entry.substr(nColon + 1);
    }
    Aws::S3::Model::Tag tag;
    tag.SetKey(Aws::String(key));
    tag.SetValue(Aws::String(value));
    return tag;
}

void LogTags(const char* pszOperation, const Tags& tags) {
    std::string strLine =
        std::string("Success to ") + pszOperation + ". Tag Count = " + std::to_string(tags.size());
    for (const auto& tag : tags) {
        strLine.append(" [").append(tag.GetKey().c_str()).append(":");
        strLine.append(tag.GetValue().c_str()).append("]");
    }
    ModuleLog(&g_ModuleLog, 1, "%s", strLine.c_str());
}

// Stops at the first tag that does not fit and returns the code of its copy; the tags before it
// stay in the record.
int32_t PackTags(const Tags& tags, Mirqos::PackedTextWriter& list) {
    for (const auto& tag : tags) {
        int nCode = list.Append(tag.GetKey());
        if (nCode != Mirqos::kCopyDone) {
            ModuleLog(&g_ModuleLog, 1, "GetObjectTagging memcpy_s failed nErr[%d] key[%s].", nCode,
                      tag.GetKey().c_str());
            return nCode;
        }
        nCode = list.Append(":");
        if (nCode == Mirqos::kCopyDone) {
            nCode = list.Append(tag.GetValue());
        }
        if (nCode == Mirqos::kCopyDone) {
            nCode = list.EndEntry();
        }
        if (nCode != Mirqos::kCopyDone) {
            ModuleLog(&g_ModuleLog, 1, "GetObjectTagging memcpy_s failed nErr[%d] value[%s].",
                      nCode, tag.GetValue().c_str());
            return nCode;
        }
    }
    return 0;
}

}  // namespace

int32_t AwsS3Store::PutObjectTagging(PutObjectTaggingContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    Tags tags;
    Mirqos::PackedTextReader entries(pContext->m_pTags);
    for (std::string_view entry; entries.Next(entry);) {
        tags.push_back(TagOfEntry(entry));
    }
    // Set as a whole: a set that no tag was ever added to is not sent, and the service refuses
    // that.
    Aws::S3::Model::Tagging tagging;
    tagging.SetTagSet(tags);
    Aws::S3::Model::PutObjectTaggingRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    // Tagging takes the key as it is, without the substitution of the other operations.
    SetObjectKey(request, pContext->m_pszKey);
    request.SetTagging(tagging);

    const auto outcome = m_pClient->PutObjectTagging(request);
    if (!outcome.IsSuccess()) {
        const int32_t nStatus = Mirqos::StatusOf(outcome);
        ModuleLog(&g_ModuleLog, 1, "Failed to PutObjectTagging. ret[%d], Error:[%s].", nStatus,
                  outcome.GetError().GetMessage().c_str());
        return nStatus;
    }
    LogTags("PutObjectTagging", tags);
    return 0;
}

int32_t AwsS3Store::GetObjectTagging(GetObjectTaggingContext* pContext) {
    assert(pContext != nullptr && m_pClient != nullptr);
    ++m_nRequestCount;
    Mirqos::PackedTextWriter list(pContext->m_szTags, sizeof pContext->m_szTags);
    Aws::S3::Model::GetObjectTaggingRequest request;
    Mirqos::SetBucketName(request, pContext->m_pszBucket);
    SetObjectKey(request, pContext->m_pszKey);

    const auto outcome = m_pClient->GetObjectTagging(request);
    if (!outcome.IsSuccess()) {
        const int32_t nStatus = Mirqos::StatusOf(outcome);
        ModuleLog(&g_ModuleLog, 1, "Failed to GetObjectTagging. ret[%d] Error:[%s]", nStatus,
                  outcome.GetError().GetMessage().c_str());
        return nStatus;
    }
    const Tags& tags = outcome.GetResult().GetTagSet();
    LogTags("GetObjectTagging", tags);
    return PackTags(tags, list);
}
