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
    PAR_NONE, ///< No parity bit.
    PAR_ODD,  ///< Odd.
    PAR_EVEN, ///< Even.
    PAR_MARK, ///< Always 1.
    PAR_SPACE ///< Always 0.
};

/// Stop bits after a character.
enum StopBitsType
{
    STOP_1,   ///< One.
    STOP_1_5, ///< One and a half.
    STOP_2    ///< Two.
};

/// Flow control.
enum FlowType
{
    FLOW_OFF,      ///< None.
    FLOW_HARDWARE, ///< By the lines RTS and CTS.
    FLOW_XONXOFF   ///< By the characters XON and XOFF.
};

/// All settings of a port. A structure made without values has none of the port's defaults.
struct PortSettings
{
    BaudRateType BaudRate; ///< Line speed.
    DataBitsType DataBits; ///< Bits of data in a character.
    ParityType Parity;     ///< Parity of a character.
    StopBitsType StopBits; ///< Stop bits after a character.
    FlowType FlowControl;  ///< Flow control.
    long Timeout_Millisec; ///< Longest that a write waits, in milliseconds; 0 or less: not at all.
};

/// Values of `QextSerialPort::lastError()` that this class reports.
enum SerialPortErrorCode
{
    E_NO_ERROR = 0,          ///< None.
    E_INVALID_FD = 1,        ///< The port is not open.
    E_PORT_TIMEOUT = 4,      ///< A wait ran out.
    E_INVALID_DEVICE = 5,    ///< The device cannot do what was asked.
    E_IO_ERROR = 8,          ///< The line was lost; any other failure.
    E_READ_FAILED = 13,      ///< Reading failed.
    E_WRITE_FAILED = 14,     ///< Writing failed.
    E_FILE_NOT_FOUND = 15,   ///< There is no such device.
    E_PERMISSION_DENIED = 16 ///< The device is taken, or not for this user.
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
        Polling,    ///< The user asks.
        EventDriven ///< The port tells.
    };

    /// A closed port without a name, with the defaults.
    explicit QextSerialPort(QueryMode mode = EventDriven, QObject* parent = 0);
    /// A closed port of the device \a name, such as `/dev/ttyS0` or `ttyS0`, with the defaults.
    explicit QextSerialPort(const QString& name, QueryMode mode = EventDriven, QObject* parent = 0);
    /// A closed port without a name, with these settings.
    explicit QextSerialPort(const PortSettings& settings, QueryMode mode = EventDriven,
                            QObject* parent = 0);
    /// A closed port of the device \a name, with these settings.
    QextSerialPort(const QString& name, const PortSettings& settings, QueryMode mode = EventDriven,
                   QObject* parent = 0);
    /// Closes the port.
    ~QextSerialPort();

    /// The device's name as it was set. Default: empty.
    QString portName() const;
    /// How received bytes are noticed. Default: `EventDriven`.
    QueryMode queryMode() const;
    /// The line speed that was set. Default: `BAUD9600`.
    BaudRateType baudRate() const;
    /// The data bits that were set. Default: `DATA_8`.
    DataBitsType dataBits() const;
    /// The parity that was set. Default: `PAR_NONE`.
    ParityType parity() const;
    /// The stop bits that were set. Default: `STOP_1`.
    StopBitsType stopBits() const;
    /// The flow control that was set. Default: `FLOW_OFF`.
    FlowType flowControl() const;

    /// Opens the port in \a mode with the current settings. False: it is open already, or see
    /// lastError().
    bool open(OpenMode mode);
    /// Closes the port, and does nothing with a closed one. Emits `aboutToClose()` before.
    void close();
    /// Always true: a line has no positions.
    bool isSequential() const;
    /// Discards what was received and not read, and what was written and not sent.
    void flush();
    /// The number of bytes waiting, as bytesAvailable().
    qint64 size() const;
    /// Bytes that can be read now, those that the kernel still holds included.
    qint64 bytesAvailable() const;
    /// Bytes that were written and have not reached the kernel.
    qint64 bytesToWrite() const;
    /// Whether a line feed is among the bytes that can be read.
    bool canReadLine() const;
    /// Waits up to \a msecs milliseconds (-1: without end) for bytes to read. False: none came, or
    /// see lastError(). Blocks the thread.
    bool waitForReadyRead(int msecs);
    /// Waits up to \a msecs milliseconds (-1: without end) for bytes to leave for the kernel.
    /// False: none did, or see lastError(). Blocks the thread.
    bool waitForBytesWritten(int msecs);

    /// The last error, a SerialPortErrorCode.
    ulong lastError() const;
    /// The last error in words.
    QString errorString();

    /// The device; it counts when the port is opened the next time.
    void setPortName(const QString& name);
    /// How received bytes are noticed from now on.
    void setQueryMode(QueryMode mode);
    /// The line speed; of an open port at once.
    void setBaudRate(BaudRateType baud_rate);
    /// The data bits; of an open port at once.
    void setDataBits(DataBitsType data_bits);
    /// The parity; of an open port at once.
    void setParity(ParityType parity);
    /// The stop bits; of an open port at once.
    void setStopBits(StopBitsType stop_bits);
    /// The flow control; of an open port at once.
    void setFlowControl(FlowType flow);
    /// \param milliseconds longest that a write waits for the line; 0 or less: it does not wait.
    void setTimeout(long milliseconds);
    /// Sets or clears the line DTR of an open port.
    void setDtr(bool set = true);
    /// Sets or clears the line RTS of an open port; not with `FLOW_HARDWARE`, which does it itself.
    void setRts(bool set = true);

protected:
    /// Reads up to \a max_size bytes into \a data, those that the kernel holds included.
    /// \return how many, or -1
    qint64 readData(char* data, qint64 max_size);
    /// Hands \a max_size bytes of \a data to the line, and waits as setTimeout() says.
    /// \return how many were taken, or -1
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
