#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Element;
}

namespace Aws::S3::Model {

/// One entry of a listing.
class Object {
public:
    Object() = default;
    /// Inside this layer: the members that `element` has.
    explicit Object(const Mirqos::Xml::Element& element);

    const Aws::String& GetKey() const { return m_key; }
    void SetKey(Aws::String value) { m_key = std::move(value); }
    Object& WithKey(Aws::String value) {
        SetKey(std::move(value));
        return *this;
    }

    /// In bytes.
    long long GetSize() const { return m_size; }
    void SetSize(long long value) { m_size = value; }
    Object& WithSize(long long value) {
        SetSize(value);
        return *this;
    }

private:
    Aws::String m_key;
    long long m_size = 0;
};

}  // namespace Aws::S3::Model
