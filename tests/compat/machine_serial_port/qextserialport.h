#ifndef TESTS_COMPAT_MACHINE_SERIAL_PORT_QEXTSERIALPORT_H
#define TESTS_COMPAT_MACHINE_SERIAL_PORT_QEXTSERIALPORT_H

#include <QIODevice>
#include <QString>

enum BaudRateType
{
    BAUD9600 = 9600
};

enum DataBitsType
{
    DATA_8 = 8
};

enum ParityType
{
    PAR_NONE
};

enum StopBitsType
{
    STOP_1
};

enum
{
    E_IO_ERROR = 8,
    E_READ_FAILED = 13
};

/// Stands for the serial port library of a machine that has one, as far as links and drivers need
/// it: the library must then be built without a class of that name of its own.
class QextSerialPort : public QIODevice
{
    Q_OBJECT

public:
    enum QueryMode
    {
        Polling,
        EventDriven
    };

    explicit QextSerialPort(QueryMode mode = EventDriven, QObject* parent = 0);
    explicit QextSerialPort(const QString& name, QueryMode mode = EventDriven, QObject* parent = 0);
    ~QextSerialPort();

    BaudRateType baudRate() const;
    DataBitsType dataBits() const;
    ParityType parity() const;
    StopBitsType stopBits() const;
    void flush();
    ulong lastError() const;

protected:
    qint64 readData(char* data, qint64 max_size);
    qint64 writeData(const char* data, qint64 max_size);
};

#endif
