#include "tools/mirqos/TroubleReport.h"

#include <algorithm>

#include "tools/mirqos/Console.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

void SortByPath(Troubles& troubles) {
    std::sort(troubles.begin(), troubles.end(),
              [](const Trouble& a, const Trouble& b) { return a.path < b.path; });
}

Json Describe(const Troubles& troubles) {
    Json list = Json::array();
    for (const Trouble& trouble : troubles) {
        Json entry;
        AddText(entry, "path", trouble.path);
        AddText(entry, "why", trouble.why);
        list.push_back(entry);
    }
    return list;
}

void Show(const Troubles& troubles) {
    for (const Trouble& trouble : troubles) {
        WriteError("mirqos: '" + Printable(trouble.path) + "': " + trouble.why + "\n");
    }
}

void EndWith(const Troubles& troubles, const std::string& summary) {
    if (troubles.empty()) {
        return;
    }
    Show(troubles);
    const bool remote = std::any_of(troubles.begin(), troubles.end(), [](const Trouble& trouble) {
        return trouble.code == ExitCode::OperationFailed;
    });
    throw Failure(remote ? ExitCode::OperationFailed : ExitCode::LocalFile,
                  std::to_string(troubles.size()) + " " + summary);
}

}  // namespace Mirqos::Tool
