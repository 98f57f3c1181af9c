#pragma once

#include <vector>

#include "tools/mirqos/Command.h"

namespace Mirqos::Tool {

/// All commands, in the order of the help.
const std::vector<Command>& Commands();

// The rows, each in a source of its own.
Command BackupCommand();
Command RestoreCommand();
Command VerifyCommand();
Command PutCommand();
Command GetCommand();
Command CopyCommand();
Command MakeBucketCommand();
Command RemoveCommand();
Command ListCommand();
Command FindCommand();
Command StatCommand();
Command TagCommand();
Command UploadsCommand();
Command LifecycleCommand();
Command RemoveBucketCommand();
Command BucketsCommand();
Command LocationCommand();

}  // namespace Mirqos::Tool
