#ifndef TESTS_INTERFACE_VTABLE_SLOT_H
#define TESTS_INTERFACE_VTABLE_SLOT_H

#include <cstddef>
#include <cstdint>
#include <cstring>

/// The place of a virtual function in its class's table, taken from a pointer to the member as the
/// Itanium C++ ABI lays it out. Hosts call through these places, whatever the functions' names.
/// \return -1 if the function is not virtual.
template <typename MemberFunction>
int vtableSlot(MemberFunction function)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof(function) == sizeof(words), "not the Itanium C++ ABI");
    std::memcpy(words, &function, sizeof(words));
#if defined(__arm__) || defined(__aarch64__)
    // Here the mark of a virtual function is the low bit of the second word.
    const bool is_virtual = (words[1] & 1) != 0;
    const std::ptrdiff_t offset = words[0];
#else
    const bool is_virtual = (words[0] & 1) != 0;
    const std::ptrdiff_t offset = words[0] - 1;
#endif
    return is_virtual ? int(offset / std::ptrdiff_t(sizeof(void*))) : -1;
}

/// The address in place \a slot of the table of \a object, which has virtual functions.
inline void* vtableEntry(const void* object, int slot)
{
    void* const* table = nullptr;
    std::memcpy(&table, object, sizeof(table));
    return table[slot];
}

#endif
