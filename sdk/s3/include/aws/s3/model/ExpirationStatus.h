#pragma once

namespace Aws::S3::Model {

/// Whether a lifecycle rule is in force.
enum class ExpirationStatus { NOT_SET, Enabled, Disabled };

}  // namespace Aws::S3::Model
