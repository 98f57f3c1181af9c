#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <utility>

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// The objects that a rule is for; empty: all.
class LifecycleRuleFilter {
public:
    const Aws::String& GetPrefix() const { return m_prefix; }
    bool PrefixHasBeenSet() const { return m_prefixHasBeenSet; }
    void SetPrefix(Aws::String value) {
        m_prefix = std::move(value);
        m_prefixHasBeenSet = true;
    }
    LifecycleRuleFilter& WithPrefix(Aws::String value) {
        SetPrefix(std::move(value));
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    Aws::String m_prefix;
    bool m_prefixHasBeenSet = false;
};

}  // namespace Aws::S3::Model
