// A host that logs when it is told to, for tests of the program that edits its log configuration:
// it prints its process id, then does what each line of its input says and answers with a line.

#include <mirqos/mirqos.h>
#include <windows.h>

#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <thread>

namespace {

std::string OwnName(const std::string& beginning) {
    return beginning + "_C8AAE32A-9619-4685-B766-F003823BEEE3_" +
           std::to_string(GetCurrentProcessId());
}

HANDLE BlockMutex() {
    return OpenMutexA(MUTEX_ALL_ACCESS, FALSE, OwnName("Global\\LOGCFG_MUTEX_NAME").c_str());
}

// A thread count below 0 is worth a line of level 1, and that line alone.
void Log(int number) {
    CloudStoreContext context;
    MIRQOSInterface* const store = CreateCloudStoreInterface(&context);
    CloudStoreConfigInfo config;
    config.m_pszRegion = "us-east-1";
    config.m_nThreadCount = -number;
    store->Init(&config);
    ReleaseCloudStoreInterface(store);
}

// Makes and ends outputs beside those of the library, which register again.
void Restart() {
    UnInitCloudStoreContext();
    CloudStoreContext context;
    InitCloudStoreContext(&context);
}

void OverwriteEndMagic(unsigned value) {
    const HANDLE mapping =
        OpenFileMappingA(FILE_MAP_ALL_ACCESS, FALSE, OwnName("Global\\LOGCFG_SM_NAME").c_str());
    void* const view = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0);
    *reinterpret_cast<unsigned*>(static_cast<char*>(view) + 1188872) = value;
    UnmapViewOfFile(view);
    CloseHandle(mapping);
}

}  // namespace

int main() {
    CloudStoreContext context;
    InitCloudStoreContext(&context);
    const HANDLE mutex = BlockMutex();
    int number = 0;
    const std::map<std::string, std::function<void()>> commands = {
        {"log", [&] { Log(++number); }},
        {"restart", &Restart},
        {"hold", [&] { WaitForSingleObject(mutex, INFINITE); }},
        {"release", [&] { ReleaseMutex(mutex); }},
        {"abandon", [&] { std::thread([&] { WaitForSingleObject(mutex, INFINITE); }).join(); }},
        {"damage", [] { OverwriteEndMagic(0); }},
        {"repair", [] { OverwriteEndMagic(59110); }},
    };
    std::cout << GetCurrentProcessId() << std::endl;
    std::string line;
    while (std::getline(std::cin, line)) {
        commands.at(line.substr(0, line.find('\r')))();
        std::cout << "done" << std::endl;
    }
    UnInitCloudStoreContext();
    return 0;
}
