// A host that is not linked to the library: it finds the four functions by their plain names and
// uses a store through its virtual table alone. Usage: host_dynamic LIBRARY

#include <mirqos/mirqos.h>

#include <cstdio>
#include <string>

#include "Check.h"
#include "LoadedLibrary.h"
#include "ProcessFigures.h"

namespace {

void UseStore(Checks& checks, const LibraryFunctions& functions) {
    ZeroRecord<CloudStoreContext> context;
    context->m_nLogLevel = 2;
    checks.ExpectEqual(functions.init(context.Get()), 0, "InitCloudStoreContext");
    MIRQOSInterface* const store = functions.create(context.Get());
    if (checks.Expect(store != nullptr, "CreateCloudStoreInterface makes a store")) {
        ZeroRecord<CloudStoreConfigInfo> config;
        config->m_pszRegion = "dynamic-region";
        config->m_pszBucket = "dynamic-bucket";
        config->m_pszAccessKeyId = "dynamic-id";
        config->m_pszSecretKey = "dynamic-secret";
        checks.ExpectEqual(store->Init(config.Get()), 0, "Init");
        checks.ExpectEqual(std::string(store->GetRegion()), "dynamic-region", "GetRegion");
        checks.ExpectEqual(std::string(store->GetBucketName()), "dynamic-bucket", "GetBucketName");
        checks.ExpectEqual(std::string(store->GetAccessKeyId()), "dynamic-id", "GetAccessKeyId");
        checks.ExpectEqual(std::string(store->GetSecretKey()), "dynamic-secret", "GetSecretKey");
        checks.ExpectEqual(store->GetRequestCount(), 0u, "GetRequestCount");
    }
    functions.release(store);
    functions.release(nullptr);
    checks.ExpectEqual(functions.unInit(), 0, "UnInitCloudStoreContext");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::printf("usage: host_dynamic LIBRARY\n");
        return 2;
    }
    Checks checks;
    const ProcessFigures before = MeasureProcess();
    const LoadedLibrary library(argv[1]);
    if (checks.Expect(library.Handle() != nullptr, std::string("load ") + argv[1])) {
        // Loading starts nothing: threads come with a start or a store.
        checks.ExpectEqual(MeasureProcess().threads, before.threads, "threads after loading");
        const LibraryFunctions functions(library);
        if (checks.Expect(functions.Complete(), "the four functions are there by name")) {
            UseStore(checks, functions);
        }
        checks.Expect(library.Find("NoSuchFunction") == nullptr, "an unknown name is not found");
    }
    return checks.ExitCode("host_dynamic");
}
