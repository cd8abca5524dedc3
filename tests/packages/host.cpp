// Built with the installed development package; prints the library's version.
#include "interface/drvlib.h"

#include <cstdio>

int main()
{
    const unsigned int version = drv_version();
    std::printf("%u.%u.%u\n", version >> 16, version >> 8 & 255, version & 255);
}
