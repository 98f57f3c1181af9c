#pragma once

#include <aws/core/utils/memory/stl/AWSVector.h>
#include <aws/s3/model/Tag.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// All tags of an object.
class Tagging {
public:
    const Aws::Vector<Tag>& GetTagSet() const { return m_tagSet; }
    void SetTagSet(Aws::Vector<Tag> value) {
        m_tagSetHasBeenSet = true;
        m_tagSet = std::move(value);
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::Vector<Tag> m_tagSet;
    bool m_tagSetHasBeenSet = false;
};

}  // namespace Aws::S3::Model
