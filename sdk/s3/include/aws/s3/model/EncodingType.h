#pragma once

namespace Aws::S3::Model {

/// How keys are written in an answer.
enum class EncodingType { NOT_SET, url };

}  // namespace Aws::S3::Model
