#include "tools/mirqos/Answer.h"

#include "tools/mirqos/Console.h"

namespace Mirqos::Tool {

Option JsonOption() {
    return {"json", "", "", "the answer as one JSON document (mirqos --help explains)"};
}

bool WantsJson(const Invocation& invocation) {
    return invocation.arguments.Has("json");
}

void Report(const Invocation& invocation, const Json& document, const std::string& line) {
    if (WantsJson(invocation)) {
        WriteOutput(Dump(document));
    } else {
        invocation.Report(line);
    }
}

}  // namespace Mirqos::Tool
