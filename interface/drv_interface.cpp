#include "interface/drv_interface.h"

DrvInterface::DrvInterface(QObject* parent) : QObject(parent), unit_list(0), stop_flag(0) {}

DrvInterface::~DrvInterface() {}

bool DrvInterface::IsTransparentModeSupported()
{
    return false;
}

void DrvInterface::RunTransparentRequest(const QByteArray& request)
{
    Q_UNUSED(request)
}
