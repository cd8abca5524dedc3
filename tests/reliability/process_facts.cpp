#include "tests/reliability/process_facts.h"

#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

/// The entries of a folder that are numbers.
int numberedEntries(const char* folder)
{
    DIR* const directory = opendir(folder);
    if (!directory)
        return 0;
    int count = 0;
    while (const dirent* entry = readdir(directory)) {
        if (entry->d_name[0] != '.')
            ++count;
    }
    closedir(directory);
    return count;
}

qint64 residentKib()
{
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (!file)
        return 0;
    char line[128] = "";
    const bool is_read = std::fgets(line, sizeof line, file) != nullptr;
    std::fclose(file);
    // After the size of everything that is mapped.
    const char* const resident = is_read ? std::strchr(line, ' ') : nullptr;
    return resident ? std::strtoll(resident, nullptr, 10) * sysconf(_SC_PAGESIZE) / 1024 : 0;
}

} // namespace

ProcessFacts processFacts()
{
    ProcessFacts facts;
    facts.resident_kib = residentKib();
    const struct mallinfo2 heap = mallinfo2();
    facts.heap_kib = qint64((heap.uordblks + heap.hblkhd) / 1024);
    facts.descriptors = numberedEntries("/proc/self/fd") - 1;
    facts.threads = numberedEntries("/proc/self/task");
    return facts;
}
