#include "cloud/driver_status.h"

#include <QByteArray>

#include <algorithm>
#include <iterator>

namespace driver_status {

int fromResult(int result)
{
    static const int known[] = {1, 3, 4, 7, 8, 9, 15, 255, 256};
    if (std::find(std::begin(known), std::end(known), result) == std::end(known))
        return 0;
    return 0x400F0000 + QByteArray::number(result).toInt(0, 16);
}

} // namespace driver_status
