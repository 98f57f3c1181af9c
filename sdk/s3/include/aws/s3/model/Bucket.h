#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Element;
}

namespace Aws::S3::Model {

/// A bucket of the account.
class Bucket {
public:
    Bucket() = default;
    /// Inside this layer: the members that `element` has.
    explicit Bucket(const Mirqos::Xml::Element& element);

    const Aws::String& GetName() const { return m_name; }
    void SetName(Aws::String value) { m_name = std::move(value); }
    Bucket& WithName(Aws::String value) {
        SetName(std::move(value));
        return *this;
    }

private:
    Aws::String m_name;
};

}  // namespace Aws::S3::Model
