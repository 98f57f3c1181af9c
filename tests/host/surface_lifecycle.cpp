#include <mirqos/mirqos.h>

#include "Surface.h"

void CheckLifecycle(Checks& checks) {
    ReleaseCloudStoreInterface(nullptr);
    CloudStoreContext context;
    for (const std::int32_t level : {0, 3, 6, 7, -1}) {
        context.m_nLogLevel = level;
        checks.ExpectEqual(InitCloudStoreContext(&context), 0, "a start at some level");
    }
    checks.ExpectEqual(InitCloudStoreContext(nullptr), 0, "a start without a context");
    for (int stop = 0; stop < 6; ++stop) {
        checks.ExpectEqual(UnInitCloudStoreContext(), 0, "its stop");
    }
    {
        context.m_nLogLevel = 2;
        MIRQOSEngineStarter guard(true, context);
        const MIRQOSEngineStarter idle(false, context);
        checks.Expect(guard.m_bStarted, "a guard that starts");
        checks.Expect(!idle.m_bStarted, "a guard that does not");
        const MIRQOSEngineStarter& same = guard;
        guard = same;
        checks.Expect(guard.m_bStarted, "a guard assigned to itself");
    }
    MIRQOSInterface* const first = CreateCloudStoreInterface(&context);
    MIRQOSInterface* const second = CreateCloudStoreInterface(nullptr);
    checks.Expect(first != nullptr && second != nullptr && first != second, "two stores");
    ReleaseCloudStoreInterface(first);
    ReleaseCloudStoreInterface(second);
}
