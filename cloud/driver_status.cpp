#include "cloud/driver_status.h"

namespace driver_status {

int fromResult(int result)
{
    switch (result) {
    case 1:
        return 0x400F0001;
    case 3:
        return 0x400F0003;
    case 4:
        return 0x400F0004;
    case 7:
        return 0x400F0007;
    case 8:
        return 0x400F0008;
    case 9:
        return 0x400F0009;
    case 15:
        return 0x400F0015;
    case 255:
        return 0x400F0255;
    case 256:
        return 0x400F0256;
    default:
        return 0;
    }
}

} // namespace driver_status
