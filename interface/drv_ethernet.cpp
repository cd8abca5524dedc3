#include "interface/drv_ethernet.h"

DrvEthernet::DrvEthernet(QObject* parent) : QTcpSocket(parent) {}

DrvEthernet::~DrvEthernet() {}
