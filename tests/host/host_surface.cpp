// A host that is linked to the import library alone and walks through everything that the library
// offers. Usage: host_surface [unbalanced-stop]

#include <mirqos/mirqos.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "Check.h"
#include "Surface.h"

namespace {

// Shuts the SDK down a second time, which not every SDK survives: a process of its own.
int RunUnbalancedStop() {
    Checks checks;
    checks.ExpectEqual(UnInitCloudStoreContext(), 0, "a stop before any start");
    checks.ExpectEqual(InitCloudStoreContext(nullptr), 0, "a start");
    checks.ExpectEqual(UnInitCloudStoreContext(), 0, "its stop");
    checks.ExpectEqual(UnInitCloudStoreContext(), 0, "one stop more");
    checks.ExpectEqual(InitCloudStoreContext(nullptr), 0, "a start after that");
    checks.ExpectEqual(UnInitCloudStoreContext(), 0, "its stop");
    return checks.ExitCode("host_surface unbalanced-stop");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "unbalanced-stop") == 0) {
        return RunUnbalancedStop();
    }
    Checks checks;
    CheckRecords(checks);
    CheckLifecycle(checks);
    CheckOperations(checks);
    return checks.ExitCode("host_surface");
}
