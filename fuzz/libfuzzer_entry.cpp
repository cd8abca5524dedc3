// The entry points that libFuzzer calls; compiled once for each target, whose function it is given.

#include "fuzz/target.h"

#include <QtGlobal>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

/// The library logs what it finds wrong, which is nearly every input here.
void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

/// Without it every large piece of memory that is given back takes a thousand page faults.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "clear_shadow_mmap_threshold=1000000000";
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler(dropMessage);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), int(size));
    try {
        fuzz::TOVIK_FUZZ_TARGET(input);
    } catch (const fuzz::Violation& violation) {
        std::fprintf(stderr, "Does not hold: %s\n", violation.property);
        std::abort();
    }
    return 0;
}
