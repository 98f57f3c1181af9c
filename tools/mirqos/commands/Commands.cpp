#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        BackupCommand(),       RestoreCommand(), VerifyCommand(),   PutCommand(),
        GetCommand(),          CopyCommand(),    RemoveCommand(),   ListCommand(),
        FindCommand(),         StatCommand(),    TagCommand(),      MakeBucketCommand(),
        RemoveBucketCommand(), BucketsCommand(), LocationCommand(), LifecycleCommand(),
        UploadsCommand()};
    return commands;
}

}  // namespace Mirqos::Tool
