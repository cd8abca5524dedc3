// Comes before every source of the library with its mutants: which one is chosen, and which were
// reached.
#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace mutants {

inline int chosenNumber()
{
    const char* number = getenv("TOVIK_MUTANT");
    return number ? atoi(number) : -1;
}

// A byte for each mutant, in a file that all processes of a test share; null when nobody asks.
inline unsigned char* reachedMap()
{
    const char* path = getenv("TOVIK_MUTANTS_REACHED");
    const int file = path ? open(path, O_RDWR) : -1;
    if (file < 0)
        return nullptr;
    void* map = mmap(nullptr, size_t(lseek(file, 0, SEEK_END)), PROT_READ | PROT_WRITE, MAP_SHARED,
                     file, 0);
    close(file);
    return map == MAP_FAILED ? nullptr : static_cast<unsigned char*>(map);
}

inline bool isChosen(int number)
{
    static const int chosen = chosenNumber();
    static unsigned char* const reached = reachedMap();
    if (reached)
        __atomic_store_n(reached + number, 1, __ATOMIC_RELAXED); // from any thread
    return number == chosen;
}

} // namespace mutants
