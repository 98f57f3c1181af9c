#pragma once

#include <aws/s3/model/BucketLocationConstraint.h>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

class CreateBucketConfiguration {
public:
    BucketLocationConstraint GetLocationConstraint() const { return m_locationConstraint; }
    bool LocationConstraintHasBeenSet() const { return m_locationConstraintHasBeenSet; }
    void SetLocationConstraint(BucketLocationConstraint value) {
        m_locationConstraint = value;
        m_locationConstraintHasBeenSet = true;
    }
    CreateBucketConfiguration& WithLocationConstraint(BucketLocationConstraint value) {
        SetLocationConstraint(value);
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    BucketLocationConstraint m_locationConstraint = BucketLocationConstraint::NOT_SET;
    bool m_locationConstraintHasBeenSet = false;
};

}  // namespace Aws::S3::Model
