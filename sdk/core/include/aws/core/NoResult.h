#pragma once

namespace Aws {

/// The result of an operation whose success says all there is.
class NoResult {};

}  // namespace Aws
