#include "tests/support/ThreadStacks.h"

#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>
#include <semaphore.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace Mirqos::Test {
namespace {

constexpr int kMaxFrames = 64;

// What the handler of the asked thread fills in; only one thread is asked at a time.
std::array<void*, kMaxFrames> g_frames;
std::atomic<int> g_frameCount{0};
std::atomic<pid_t> g_asked{0};
sem_t g_answered;

int StackSignal() {
    return SIGRTMIN + 5;
}

pid_t ThisThread() {
    return static_cast<pid_t>(syscall(SYS_gettid));
}

void CollectStack(int) {
    const int saved = errno;
    // a late answer of a thread that was given up must not mix with the next one's
    pid_t expected = ThisThread();
    if (g_asked.compare_exchange_strong(expected, 0)) {
        g_frameCount = backtrace(g_frames.data(), kMaxFrames);
        sem_post(&g_answered);
    }
    errno = saved;
}

std::vector<pid_t> OtherThreads() {
    std::vector<pid_t> threads;
    DIR* folder = opendir("/proc/self/task");
    if (folder == nullptr) {
        return threads;
    }
    const pid_t self = ThisThread();
    while (const dirent* entry = readdir(folder)) {
        const pid_t id = static_cast<pid_t>(std::strtol(entry->d_name, nullptr, 10));
        if (id > 0 && id != self) {
            threads.push_back(id);
        }
    }
    closedir(folder);
    return threads;
}

// The C library's symbol names end at what is exported; binutils sees the rest.
void PrintNames(const std::vector<void*>& frames) {
    std::vector<std::string> words{"addr2line", "-Cfipe", ""};
    for (void* frame : frames) {
        Dl_info info{};
        link_map* map = nullptr;
        if (dladdr1(frame, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0 ||
            map == nullptr || map->l_name == nullptr || map->l_name[0] != '\0') {
            continue;  // not the program itself
        }
        char text[32];
        std::snprintf(text, sizeof(text), "0x%zx",
                      static_cast<size_t>(reinterpret_cast<std::uintptr_t>(frame) - map->l_addr));
        words.emplace_back(text);
    }
    if (words.size() == 3) {
        return;
    }
    std::array<char, 4096> program{};
    if (readlink("/proc/self/exe", program.data(), program.size() - 1) <= 0) {
        return;
    }
    words[2] = program.data();
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
    pid_t child = 0;
    if (posix_spawnp(&child, "addr2line", &actions, nullptr, arguments.data(), environ) == 0) {
        int status = 0;
        waitpid(child, &status, 0);
    }
    posix_spawn_file_actions_destroy(&actions);
}

bool Ask(pid_t thread) {
    g_asked = thread;
    if (syscall(SYS_tgkill, getpid(), thread, StackSignal()) != 0) {
        g_asked = 0;
        return false;
    }
    timespec limit{};
    clock_gettime(CLOCK_REALTIME, &limit);
    limit.tv_sec += 3;
    int result = 0;
    do {
        result = sem_timedwait(&g_answered, &limit);
    } while (result != 0 && errno == EINTR);
    if (result == 0) {
        return true;
    }
    if (g_asked.exchange(0) == thread) {
        return false;
    }
    // the handler has begun in the meantime: it will post
    return sem_wait(&g_answered) == 0;
}

}  // namespace

void PrepareThreadStacks() {
    sem_init(&g_answered, 0, 0);
    // the first call loads the unwinder, which a signal handler must not
    backtrace(g_frames.data(), 1);
    struct sigaction action {};
    action.sa_handler = CollectStack;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(StackSignal(), &action, nullptr);
}

void PrintThreadStacks() {
    for (const pid_t thread : OtherThreads()) {
        std::fprintf(stderr, "--- thread %d\n", static_cast<int>(thread));
        std::fflush(stderr);
        if (!Ask(thread)) {
            std::fprintf(stderr, "(it did not answer)\n");
            continue;
        }
        const int count = g_frameCount;
        backtrace_symbols_fd(g_frames.data(), count, STDERR_FILENO);
        PrintNames(std::vector<void*>(g_frames.begin(), g_frames.begin() + count));
    }
}

}  // namespace Mirqos::Test
