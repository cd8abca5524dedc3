#include "interface/drv_base.h"

DrvBase::DrvBase()
    : request_delay(0),
      response_timeout(10),
      retry_count(0),
      link_param_a(0),
      link_param_b(255)
{}

DrvBase::~DrvBase() {}

QVariant DrvBase::GetDriverSpecificData(const QString& key)
{
    return driver_specific_data[key];
}
