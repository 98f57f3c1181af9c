#pragma once

#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/LifecycleRule.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// All rules of a bucket.
class BucketLifecycleConfiguration {
public:
    const Aws::Vector<LifecycleRule>& GetRules() const { return m_rules; }
    BucketLifecycleConfiguration& AddRules(LifecycleRule value) {
        m_rules.push_back(std::move(value));
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::Vector<LifecycleRule> m_rules;
};

}  // namespace Aws::S3::Model
