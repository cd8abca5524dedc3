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
