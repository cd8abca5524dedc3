#ifndef COMPAT_QEXT_SERIAL_PORT_H
#define COMPAT_QEXT_SERIAL_PORT_H

#ifndef TOVIK_HAS_QEXTSERIALPORT

#include "compat/export.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>

class QSerialPort;

/// Line speeds; the enumerator's value is the speed in baud.
enum BaudRateType
{
    BAUD50 = 50,
    BAUD75 = 75,
    BAUD110 = 110,
    BAUD134 = 134,
    BAUD150 = 150,
    BAUD200 = 200,
    BAUD300 = 300,
    BAUD600 = 600,
    BAUD1200 = 1200,
    BAUD1800 = 1800,
    BAUD2400 = 2400,
    BAUD4800 = 4800,
    BAUD9600 = 9600,
    BAUD19200 = 19200,
    BAUD38400 = 38400,
    BAUD57600 = 57600,
    BAUD115200 = 115200,
    BAUD230400 = 230400,
    BAUD460800 = 460800,
    BAUD921600 = 921600
};

/// Bits of data in a character; the enumerator's value is their number.
enum DataBitsType
{
    DATA_5 = 5,
    DATA_6 = 6,
    DATA_7 = 7,
    DATA_8 = 8
};

/// Parity of a character.
enum ParityType
{
    PAR_NONE,
    PAR_ODD,
    PAR_EVEN,
    PAR_MARK,
    PAR_SPACE
};

/// Stop bits behind a character.
enum StopBitsType
{
    STOP_1,
    STOP_1_5,
    STOP_2
};

/// Flow control.
enum FlowType
{
    FLOW_OFF,
    FLOW_HARDWARE,
    FLOW_XONXOFF
};

/// All settings of a port. `Timeout_Millisec` is the longest that a write may wait.
struct PortSettings
{
    BaudRateType BaudRate;
    DataBitsType DataBits;
    ParityType Parity;
    StopBitsType StopBits;
    FlowType FlowControl;
    long Timeout_Millisec;
};

/// Values of `QextSerialPort::lastError()` that this class reports.
enum SerialPortErrorCode
{
    E_NO_ERROR = 0,
    E_INVALID_FD = 1,
    E_PORT_TIMEOUT = 4,
    E_INVALID_DEVICE = 5,
    E_IO_ERROR = 8,
    E_READ_FAILED = 13,
    E_WRITE_FAILED = 14,
    E_FILE_NOT_FOUND = 15,
    E_PERMISSION_DENIED = 16
};

/// A serial port as an I/O device.
///
/// Defaults: 9600 baud, 8 data bits, no parity, one stop bit, no flow control, 10 ms. Settings may
/// be made at any time; those of a closed port are applied when it opens. A port whose line hangs
/// up (the adapter is unplugged) closes itself, with `aboutToClose()`. Not thread-safe: use a port
/// in the thread in which it lives.
class TOVIK_EXPORT QextSerialPort : public QIODevice
{
    Q_OBJECT

public:
    /// How received bytes are noticed. With `EventDriven`, `readyRead()` is emitted; with
    /// `Polling`, the user asks `bytesAvailable()`. Asking works in both.
    enum QueryMode
    {
        Polling,
        EventDriven
    };

    explicit QextSerialPort(QueryMode mode = EventDriven, QObject* parent = 0);
    explicit QextSerialPort(const QString& name, QueryMode mode = EventDriven, QObject* parent = 0);
    explicit QextSerialPort(const PortSettings& settings, QueryMode mode = EventDriven,
                            QObject* parent = 0);
    QextSerialPort(const QString& name, const PortSettings& settings, QueryMode mode = EventDriven,
                   QObject* parent = 0);
    ~QextSerialPort();

    QString portName() const;
    QueryMode queryMode() const;
    BaudRateType baudRate() const;
    DataBitsType dataBits() const;
    ParityType parity() const;
    StopBitsType stopBits() const;
    FlowType flowControl() const;

    /// Opens the port in \a mode with the current settings. False: see lastError().
    bool open(OpenMode mode);
    void close();
    bool isSequential() const;
    /// Discards what was received and not read, and what was written and not sent.
    void flush();
    /// The number of bytes waiting, as bytesAvailable().
    qint64 size() const;
    /// Bytes that can be read now, those that the kernel still holds included.
    qint64 bytesAvailable() const;
    qint64 bytesToWrite() const;
    bool canReadLine() const;
    bool waitForReadyRead(int msecs);
    bool waitForBytesWritten(int msecs);

    /// The last error, a SerialPortErrorCode.
    ulong lastError() const;
    /// The last error in words.
    QString errorString();

    void setPortName(const QString& name);
    void setQueryMode(QueryMode mode);
    void setBaudRate(BaudRateType baud_rate);
    void setDataBits(DataBitsType data_bits);
    void setParity(ParityType parity);
    void setStopBits(StopBitsType stop_bits);
    void setFlowControl(FlowType flow);
    /// \param milliseconds longest that a write waits for the line; 0 or less: it does not wait.
    void setTimeout(long milliseconds);
    void setDtr(bool set = true);
    void setRts(bool set = true);

protected:
    qint64 readData(char* data, qint64 max_size);
    qint64 writeData(const char* data, qint64 max_size);

private Q_SLOTS:
    void onReadyRead();
    void onErrorOccurred();
    void onHangUp();

private:
    Q_DISABLE_COPY(QextSerialPort)

    void initialise();
    void applySettings();
    qint64 bytesInKernel() const;

    QSerialPort* port_;
    PortSettings settings_;
    QueryMode query_mode_;
    bool hung_up_;
};

#endif

#endif
