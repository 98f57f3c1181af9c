#pragma once

#include <aws/s3/model/CopyObjectResultDetails.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class CopyObjectResult {
public:
    CopyObjectResult() = default;
    explicit CopyObjectResult(Mirqos::Client::Answer&& answer);

    const CopyObjectResultDetails& GetCopyObjectResultDetails() const {
        return m_copyObjectResultDetails;
    }

private:
    CopyObjectResultDetails m_copyObjectResultDetails;
};

}  // namespace Aws::S3::Model
