#include "interface/drv_serial.h"

DrvSerial::DrvSerial(QObject* parent) : QextSerialPort(QextSerialPort::EventDriven, parent) {}

DrvSerial::DrvSerial(const QString& port_name, QObject* parent)
    : QextSerialPort(port_name, QextSerialPort::EventDriven, parent)
{}

DrvSerial::~DrvSerial() {}
