#include "qextserialport.h"

QextSerialPort::QextSerialPort(QueryMode mode, QObject* parent) : QIODevice(parent)
{
    Q_UNUSED(mode)
}

QextSerialPort::QextSerialPort(const QString& name, QueryMode mode, QObject* parent)
    : QIODevice(parent)
{
    Q_UNUSED(name)
    Q_UNUSED(mode)
}

QextSerialPort::~QextSerialPort() {}

BaudRateType QextSerialPort::baudRate() const
{
    return BAUD9600;
}

DataBitsType QextSerialPort::dataBits() const
{
    return DATA_8;
}

ParityType QextSerialPort::parity() const
{
    return PAR_NONE;
}

StopBitsType QextSerialPort::stopBits() const
{
    return STOP_1;
}

ulong QextSerialPort::lastError() const
{
    return 0;
}

void QextSerialPort::flush() {}

qint64 QextSerialPort::readData(char* data, qint64 max_size)
{
    Q_UNUSED(data)
    Q_UNUSED(max_size)
    return -1;
}

qint64 QextSerialPort::writeData(const char* data, qint64 max_size)
{
    Q_UNUSED(data)
    Q_UNUSED(max_size)
    return -1;
}
