#ifndef TESTS_RELIABILITY_PROCESS_FACTS_H
#define TESTS_RELIABILITY_PROCESS_FACTS_H

#include <QtGlobal>

/// What a process holds at a moment.
struct ProcessFacts
{
    qint64 resident_kib = 0; ///< Physical memory.
    qint64 heap_kib = 0;     ///< What malloc has handed out and not got back.
    int descriptors = 0;     ///< The one that lists them not counted.
    int threads = 0;
};

/// The facts of this process. Thread-safe.
ProcessFacts processFacts();

#endif
