#ifndef TESTS_PROPERTY_ADDRESS_SPACE_H
#define TESTS_PROPERTY_ADDRESS_SPACE_H

#include <QtGlobal>

/// The most address space that this process ever had, in KiB; -1 if the system does not say. Room
/// that is reserved and never touched counts, which resident memory would not show.
qint64 peakAddressSpace();

#endif
