#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {PutCommand(), GetCommand(), MakeBucketCommand(),
                                                  RemoveCommand()};
    return commands;
}

}  // namespace Mirqos::Tool
