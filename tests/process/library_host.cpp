// A host of the library as it is built, which logs lines to files of the caller's.
//
//     library_host PATH SHARED [NAME DATA]...
//
// loads the library and starts it with a log file of its own, PATH, then lets it go by the path of
// all modules, SHARED, and has a store log a line. For this process the engine of the product is
// installed, in another folder, when there are NAMEs: values with that DATA, numbers or texts, of
// its key "Debug". Ends with 0.

#include <mirqos/mirqos.h>
#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/win32/CLogConfig.h"
#include "platform/undo_windows_macros.h"
#include "tests/host/LoadedLibrary.h"
#include "tests/support/Watchdog.h"
#include "tests/support/win32/OutsideConfig.h"
#include "tests/support/win32/PrivateRegistry.h"

namespace {

using Mirqos::Test::OutsideConfig;
using Mirqos::Test::PrivateRegistry;

void SetValue(PrivateRegistry& registry, const std::wstring& name, const std::wstring& data) {
    const std::wstring key = L"SOFTWARE\\Quorvane\\Halvestor\\Engine\\Debug";
    if (std::all_of(data.begin(), data.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; })) {
        registry.SetNumber(key, name, static_cast<std::uint32_t>(std::stoul(data)));
    } else {
        registry.SetText(key, name, data);
    }
}

// What a tool writes into the block of this process.
void Configure(const std::wstring& path, std::uint32_t dwFlags, const std::wstring& sharedPath) {
    OutsideConfig(GetCurrentProcessId()).Edit([&](LOGUTILS::LogConfigBlock& block) {
        LOGUTILS::LogModuleEntry* const pEntry = LOGUTILS::FindOrTakeModule(block, L"MIRQOS.dll");
        LOGUTILS::PutText(pEntry->m_szPath, path);
        pEntry->m_dwFlags = dwFlags;
        LOGUTILS::PutText(block.m_szGlobalPath, sharedPath);
    });
}

// A thread count below 0 is worth a line.
bool LogALine(const LibraryFunctions& functions, CloudStoreContext& context) {
    MIRQOSInterface* const store = functions.create(&context);
    CloudStoreConfigInfo config;
    config.m_pszRegion = "us-east-1";
    config.m_nThreadCount = -7;
    const bool bDone = store != nullptr && store->Init(&config) == 0;
    functions.release(store);
    return bDone;
}

}  // namespace

int main() {
    const Mirqos::Test::Watchdog watchdog(std::chrono::seconds(200), {});
    int nArguments = 0;
    wchar_t** const ppszArguments = CommandLineToArgvW(GetCommandLineW(), &nArguments);
    if (nArguments < 3) {
        return 2;
    }
    NSDBG::CLogConfig::Instance().RegisterModule(L"library_host");  // makes the block
    Configure(ppszArguments[1], 0, L"");
    PrivateRegistry registry;
    for (int n = 3; n + 1 < nArguments; n += 2) {
        SetValue(registry, ppszArguments[n], ppszArguments[n + 1]);
    }
    const LoadedLibrary library(MIRQOS_LIBRARY);
    const LibraryFunctions functions(library);
    CloudStoreContext context;
    if (!functions.Complete() || functions.init(&context) != 0) {
        return 1;
    }
    Configure(ppszArguments[1], 0xFFFF, ppszArguments[2]);
    return LogALine(functions, context) && functions.unInit() == 0 ? 0 : 1;
}
