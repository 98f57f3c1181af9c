#include <aws/s3/model/PutBucketLifecycleConfigurationRequest.h>

#include <string>

#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

namespace {

const char* NameOf(ExpirationStatus status) {
    return status == ExpirationStatus::Enabled ? "Enabled" : "Disabled";
}

}  // namespace

void AbortIncompleteMultipartUpload::Write(Mirqos::Xml::Writer& writer) const {
    writer.Leaf("DaysAfterInitiation", std::to_string(GetDaysAfterInitiation()));
}

void LifecycleRuleFilter::Write(Mirqos::Xml::Writer& writer) const {
    if (PrefixHasBeenSet()) {
        writer.Leaf("Prefix", Mirqos::ToStd(GetPrefix()));
    }
}

void LifecycleRule::Write(Mirqos::Xml::Writer& writer) const {
    if (IDHasBeenSet()) {
        writer.Leaf("ID", Mirqos::ToStd(GetID()));
    }
    if (FilterHasBeenSet()) {
        writer.Open("Filter");
        GetFilter().Write(writer);
        writer.Close();
    }
    writer.Leaf("Status", NameOf(GetStatus()));
    if (AbortIncompleteMultipartUploadHasBeenSet()) {
        writer.Open("AbortIncompleteMultipartUpload");
        GetAbortIncompleteMultipartUpload().Write(writer);
        writer.Close();
    }
}

void BucketLifecycleConfiguration::Write(Mirqos::Xml::Writer& writer) const {
    for (const auto& rule : GetRules()) {
        writer.Open("Rule");
        rule.Write(writer);
        writer.Close();
    }
}

Mirqos::Client::WireRequest PutBucketLifecycleConfigurationRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForBucket("PUT", *this);
    wire.query.emplace_back("lifecycle", "");
    Mirqos::S3::SetXmlBody(wire, "LifecycleConfiguration", GetLifecycleConfiguration());
    wire.needsContentMd5 = true;
    return wire;
}

}  // namespace Aws::S3::Model
