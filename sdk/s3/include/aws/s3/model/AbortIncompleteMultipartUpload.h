#pragma once

namespace Mirqos::Xml {
class Writer;
}

namespace Aws::S3::Model {

/// When unfinished uploads are discarded.
class AbortIncompleteMultipartUpload {
public:
    int GetDaysAfterInitiation() const { return m_daysAfterInitiation; }
    void SetDaysAfterInitiation(int value) { m_daysAfterInitiation = value; }
    AbortIncompleteMultipartUpload& WithDaysAfterInitiation(int value) {
        SetDaysAfterInitiation(value);
        return *this;
    }

    /// Inside this layer: writes the members that have been set.
    void Write(Mirqos::Xml::Writer& writer) const;

private:
    int m_daysAfterInitiation = 0;
};

}  // namespace Aws::S3::Model
