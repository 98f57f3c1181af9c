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
    Tagging& AddTagSet(Tag value) {
        m_tagSet.push_back(std::move(value));
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::Vector<Tag> m_tagSet;
};

}  // namespace Aws::S3::Model
