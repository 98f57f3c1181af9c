#include "ProcessFigures.h"

#include <malloc.h>
#include <pthread.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace {

std::int64_t EntriesOf(const char* folder) {
    std::int64_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) {
        ++count;
    }
    return count;
}

std::int64_t FreeTls() {
    std::vector<pthread_key_t> taken;
    for (pthread_key_t key; pthread_key_create(&key, nullptr) == 0;) {
        taken.push_back(key);
    }
    for (const pthread_key_t key : taken) {
        pthread_key_delete(key);
    }
    return static_cast<std::int64_t>(taken.size());
}

std::int64_t MemoryBytes() {
    // What was freed and is only kept for later goes back first: how much that is depends on how
    // threads came by each other.
    malloc_trim(0);
    std::int64_t totalPages = 0;
    std::int64_t residentPages = -1;
    std::ifstream("/proc/self/statm") >> totalPages >> residentPages;
    return residentPages < 0 ? -1 : residentPages * sysconf(_SC_PAGESIZE);
}

}  // namespace

ProcessFigures MeasureProcess() {
    return {EntriesOf("/proc/self/fd"), FreeTls(), MemoryBytes(), EntriesOf("/proc/self/task")};
}
