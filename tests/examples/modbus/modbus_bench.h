#ifndef TESTS_EXAMPLES_MODBUS_MODBUS_BENCH_H
#define TESTS_EXAMPLES_MODBUS_MODBUS_BENCH_H

#include "examples/modbus/modbus_driver.h"
#include "tests/examples/modbus/modbus_device.h"

#include <QObject>

/// One request of a host, in words that are short enough for tables.
struct Asked
{
    QString address;
    int data_length = 0; ///< Of a read.
    QByteArray data;     ///< Of a write.
    int station = 1;
    int field1 = 0;
    int extra1 = 0;
    int extra2 = 0;
};

Asked readOf(const char* address, int data_length);
Asked writeOf(const char* address, const QByteArray& data);

/// What the host got; \a answers is 1 unless the driver broke its word.
struct Got
{
    int answers = 0;
    int status = -1;
    QByteArray data;
};

/// A host in miniature: raises requests and takes the answers.
class MiniatureHost : public QObject
{
    Q_OBJECT

public:
    /// \a driver is not owned.
    explicit MiniatureHost(DrvInterface* driver);

    Got read(const Asked& asked);
    Got write(const Asked& asked);

private Q_SLOTS:
    void onResponse(QString unit_name, QString link_name, QByteArray ba, int status);

private:
    DrvInterface* driver_;
    Got got_;
};

/// A driver with a device at the far end of its link, and a host.
///
/// The driver begins to wait for an answer only when the device has done all that it does with the
/// request: so no time-out, however short, depends on how fast the device's thread runs.
class ModbusBench
{
public:
    explicit ModbusBench(modbus::Transport transport);
    ~ModbusBench();

    /// Opens the link, once more if it was open.
    bool connectLink();
    void closeLink();
    /// The host's settings of the link.
    void setResponseTimeout(int milliseconds);
    void setRetries(int count);
    /// Lets the driver wait while the device is still at work.
    void setPaced(bool paced) { is_paced_ = paced; }
    bool isLinkUp() const;
    /// Waits until the device has done all that it does with the requests so far.
    void waitUntilServed();

    /// The device answers each request with \a pdu, correctly framed.
    void answerWith(const QByteArray& pdu);
    /// The device answers with what \a bytes makes of the request, in one piece.
    void answerBytes(const std::function<QByteArray(const QByteArray& request)>& bytes);
    /// The frame that answers \a request with \a pdu.
    QByteArray frame(const QByteArray& request, const QByteArray& pdu) const;

    const modbus::Transport transport;
    ModbusDevice device;
    DrvEthernet ethernet;
    DrvSerial serial;
    std::unique_ptr<ModbusDriver> driver;
    std::unique_ptr<MiniatureHost> host;

private:
    class PacedDriver;

    DrvBase& settings();
    void settingsChanged();

    bool is_paced_ = true;
    int sent_ = 0;
};

/// Bytes from hexadecimal digits; blanks may stand between them.
QByteArray hex(const char* digits);
/// A status as the documentation writes it.
QString code(int status);

/// Compares status codes and shows them as the documentation does.
#define COMPARE_STATUS(actual, expected) QCOMPARE(code(actual), code(expected))

Q_DECLARE_METATYPE(Asked)
Q_DECLARE_METATYPE(modbus::Transport)

#endif
