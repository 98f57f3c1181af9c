#pragma once

namespace Mirqos::Test {

/// Prepares what PrintThreadStacks needs. Called once, before other threads exist.
void PrepareThreadStacks();

/// Writes the stack of every thread of this process but the caller's to the standard error
/// output. A thread that cannot be asked is named and passed over after a bounded wait.
void PrintThreadStacks();

}  // namespace Mirqos::Test
