#include "cloud/error_handling.h"

#include "interface/drv_base.h"

#include <limits>

ErrorHandling ErrorHandling::of(DrvBase* link)
{
    const QString start = QLatin1String("tovik_iot_err_");
    ErrorHandling handling;
    handling.type = link->GetDriverSpecificData(start + QLatin1String("handle_type")).toInt();
    handling.return_time =
        link->GetDriverSpecificData(start + QLatin1String("return_time")).toInt();
    handling.retry_count =
        link->GetDriverSpecificData(start + QLatin1String("retry_count")).toInt();
    handling.return_time_en =
        link->GetDriverSpecificData(start + QLatin1String("return_time_en")).toBool();
    handling.restore_switch_bs_en =
        link->GetDriverSpecificData(start + QLatin1String("restore_switch_bs_en")).toBool();
    return handling;
}

bool ErrorHandling::reconnectsByTimer() const
{
    return type == 0 || type == 2 || (type == 1 && return_time_en);
}

bool ErrorHandling::reconnectsByReads() const
{
    return type == 3 || (type == 1 && restore_switch_bs_en && !return_time_en);
}

int ErrorHandling::interval() const
{
    const qint64 longest = std::numeric_limits<int>::max();
    const qint64 seconds = type == 1 && return_time_en ? return_time : 1;
    return int(qBound(-longest, 1000 * seconds, longest));
}
