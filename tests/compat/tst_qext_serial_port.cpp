#include "tests/compat/serial_bench.h"
#include "tests/support/pty.h"

#include <QFile>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// While it lives the process is nobody, to whom, unlike root, permissions of files apply.
class AsNobody
{
public:
    AsNobody() : user_(geteuid()), is_nobody_(user_ != 0 || seteuid(65534) == 0) {}
    ~AsNobody()
    {
        if (seteuid(user_) != 0)
            qFatal("cannot take the privileges back");
    }
    bool isNobody() const { return is_nobody_; }

private:
    Q_DISABLE_COPY(AsNobody)

    uid_t user_;
    bool is_nobody_;
};

/// Whether a line keeps a speed that it is given without the class under test.
bool lineTakes(int speed)
{
    Pty pty;
    termios line = pty.attributes();
    const int file = ::open(QFile::encodeName(pty.portName()).constData(), O_RDWR | O_NOCTTY);
    cfsetspeed(&line, speed_t(speed));
    tcsetattr(file, TCSANOW, &line);
    ::close(file);
    line = pty.attributes();
    return int(cfgetospeed(&line)) == speed;
}

} // namespace

class TestQextSerialPort : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settingsBeforeOpening();
    void settingsWhileOpen();
    void lineSpeed_data();
    void lineSpeed();
    void stopBitsAndFlowReachTheLine();
    void markAndSpaceReachTheLine();
    void refusedSettingLeavesThePortInUse();
    void portsThatDoNotOpen_data();
    void portsThatDoNotOpen();
    void portWithoutPermission();
    void openCloseReopen();
    void closedPortHasNothing();
    void closedPortHasNoControlLines();
};

static void setAll(QextSerialPort* port)
{
    port->setBaudRate(BAUD115200);
    port->setDataBits(DATA_8);
    port->setParity(PAR_NONE);
    port->setStopBits(STOP_2);
    port->setFlowControl(FLOW_HARDWARE);
}

static void verifyAll(const QextSerialPort& port, const Pty& pty)
{
    const QList<int> expected{BAUD115200, DATA_8, PAR_NONE, STOP_2, FLOW_HARDWARE};
    QCOMPARE(settingsOf(port), expected);
    const termios line = pty.attributes();
    QCOMPARE(cfgetospeed(&line), speed_t(B115200));
    QCOMPARE(cfgetispeed(&line), speed_t(B115200));
    QCOMPARE(line.c_cflag & CSIZE, tcflag_t(CS8));
    QVERIFY(!(line.c_cflag & PARENB));
    QVERIFY(line.c_cflag & CSTOPB);
    QVERIFY(line.c_cflag & CRTSCTS);
    QVERIFY(!(line.c_iflag & (IXON | IXOFF)));
}

void TestQextSerialPort::settingsBeforeOpening()
{
    Pty pty;
    QVERIFY(pty.isValid());
    QextSerialPort port(other_settings);
    port.setPortName(pty.portName());
    setAll(&port);
    QVERIFY(port.open(QIODevice::ReadWrite));
    verifyAll(port, pty);
}

void TestQextSerialPort::settingsWhileOpen()
{
    Pty pty;
    QextSerialPort port(pty.portName());
    QVERIFY(port.open(QIODevice::ReadWrite));
    setAll(&port);
    QCOMPARE(port.lastError(), ulong(E_NO_ERROR));
    verifyAll(port, pty);
}

void TestQextSerialPort::lineSpeed_data()
{
    QTest::addColumn<int>("baud_rate");
    QTest::addColumn<int>("line_speed");
    QTest::newRow("50") << int(BAUD50) << B50;
    QTest::newRow("110") << int(BAUD110) << B110;
    QTest::newRow("1200") << int(BAUD1200) << B1200;
    QTest::newRow("9600") << int(BAUD9600) << B9600;
    QTest::newRow("38400") << int(BAUD38400) << B38400;
    QTest::newRow("57600") << int(BAUD57600) << B57600;
    QTest::newRow("921600") << int(BAUD921600) << B921600;
}

void TestQextSerialPort::lineSpeed()
{
    QFETCH(int, baud_rate);
    QFETCH(int, line_speed);
    Pty pty;
    QextSerialPort port(pty.portName());
    port.setBaudRate(BAUD2400);
    QVERIFY(port.open(QIODevice::ReadWrite));
    port.setBaudRate(BaudRateType(baud_rate));
    QCOMPARE(int(port.baudRate()), baud_rate);
    if (!lineTakes(line_speed))
        QSKIP("the lines of this kernel, or of its emulator, have no such speed");
    const termios line = pty.attributes();
    QCOMPARE(int(cfgetospeed(&line)), line_speed);
}

void TestQextSerialPort::stopBitsAndFlowReachTheLine()
{
    Pty pty;
    QextSerialPort port(pty.portName());
    QVERIFY(port.open(QIODevice::ReadWrite));
    port.setStopBits(STOP_2);
    QVERIFY(pty.attributes().c_cflag & CSTOPB);
    port.setStopBits(STOP_1);
    QVERIFY(!(pty.attributes().c_cflag & CSTOPB));
    port.setFlowControl(FLOW_XONXOFF);
    QVERIFY(pty.attributes().c_iflag & IXON);
    QVERIFY(!(pty.attributes().c_cflag & CRTSCTS));
    port.setFlowControl(FLOW_OFF);
    QVERIFY(!(pty.attributes().c_iflag & IXON));
    port.setParity(PAR_ODD); // a pseudo terminal has no parity, but keeps which one was asked for
    QVERIFY(pty.attributes().c_cflag & PARODD);
    QCOMPARE(port.parity(), PAR_ODD);
}

void TestQextSerialPort::markAndSpaceReachTheLine()
{
    Pty pty;
    QextSerialPort port(pty.portName());
    QVERIFY(port.open(QIODevice::ReadWrite));
    termios line = pty.attributes();
    line.c_cflag |= CMSPAR;
    QCOMPARE(tcsetattr(pty.descriptor(), TCSANOW, &line), 0);
    if (!(pty.attributes().c_cflag & CMSPAR))
        QSKIP("the lines of this kernel, or of its emulator, have no such parity");
    port.setParity(PAR_MARK);
    QCOMPARE(pty.attributes().c_cflag & (CMSPAR | PARODD), tcflag_t(CMSPAR | PARODD));
    port.setParity(PAR_SPACE);
    QCOMPARE(pty.attributes().c_cflag & (CMSPAR | PARODD), tcflag_t(CMSPAR));
}

// A pseudo terminal has eight data bits and no parity. It takes other wishes at opening and ignores
// them; later ones it refuses. The port says what was asked for, and goes on.
void TestQextSerialPort::refusedSettingLeavesThePortInUse()
{
    Pty pty;
    QextSerialPort port(pty.portName(), other_settings);
    QVERIFY(port.open(QIODevice::ReadWrite));
    QCOMPARE(port.dataBits(), DATA_7);
    QCOMPARE(port.parity(), PAR_EVEN);
    QCOMPARE(port.lastError(), ulong(E_NO_ERROR));

    port.setDataBits(DATA_8);
    port.setParity(PAR_NONE);
    QCOMPARE(port.lastError(), ulong(E_NO_ERROR));
    port.setDataBits(DATA_7);
    QCOMPARE(port.lastError(), ulong(E_INVALID_DEVICE));
    QCOMPARE(port.dataBits(), DATA_7);
    QCOMPARE(pty.attributes().c_cflag & CSIZE, tcflag_t(CS8));
    port.setParity(PAR_EVEN);
    QCOMPARE(port.lastError(), ulong(E_INVALID_DEVICE));
    QCOMPARE(port.parity(), PAR_EVEN);

    QVERIFY(port.isOpen());
    QVERIFY(pty.send("on"));
    QTRY_COMPARE(port.bytesAvailable(), 2);
    QCOMPARE(port.readAll(), QByteArray("on"));
}

void TestQextSerialPort::portsThatDoNotOpen_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("error");
    QTest::newRow("missing device")
        << QString::fromLatin1("/dev/tovik-no-such-port") << int(E_FILE_NOT_FOUND);
    QTest::newRow("missing folder")
        << QString::fromLatin1("/no-such-folder/port") << int(E_FILE_NOT_FOUND);
    // The path is completed to that of the folder of all devices.
    QTest::newRow("empty name") << QString() << int(E_IO_ERROR);
    QTest::newRow("no terminal") << QString::fromLatin1("/dev/null") << int(E_INVALID_DEVICE);
}

void TestQextSerialPort::portsThatDoNotOpen()
{
    QFETCH(QString, name);
    QFETCH(int, error);
    QextSerialPort port(name);
    // Another run of this test may be trying the same name just now.
    QVERIFY(QTest::qWaitFor([&port] {
        return !port.open(QIODevice::ReadWrite) && port.lastError() != ulong(E_PERMISSION_DENIED);
    }));
    QVERIFY(!port.isOpen());
    QCOMPARE(port.lastError(), ulong(error));
    QVERIFY(!port.errorString().isEmpty());

    Pty pty; // the object is still of use
    port.setPortName(pty.portName());
    QVERIFY(port.open(QIODevice::ReadWrite));
    QCOMPARE(port.lastError(), ulong(E_NO_ERROR));
}

void TestQextSerialPort::portWithoutPermission()
{
    Pty pty;
    const QByteArray path = QFile::encodeName(pty.portName());
    QCOMPARE(chmod(path.constData(), 0), 0);
    QextSerialPort port(pty.portName());
    {
        const AsNobody nobody;
        if (!nobody.isNobody())
            QSKIP("cannot become a user to whom permissions apply");
        QVERIFY(!port.open(QIODevice::ReadWrite));
        QCOMPARE(port.lastError(), ulong(E_PERMISSION_DENIED));
    }
    QCOMPARE(chmod(path.constData(), S_IRUSR | S_IWUSR), 0);
    QVERIFY(port.open(QIODevice::ReadWrite));
}

void TestQextSerialPort::openCloseReopen()
{
    Pty pty;
    QextSerialPort port(pty.portName());
    for (const char* bytes : {"first", "second"}) {
        QVERIFY(port.open(QIODevice::ReadWrite));
        QVERIFY(port.isOpen());
        QVERIFY(!port.open(QIODevice::ReadWrite)); // it is open already, and stays so
        QVERIFY(port.isOpen());
        QVERIFY(pty.send(bytes));
        QTRY_COMPARE(port.bytesAvailable(), qint64(qstrlen(bytes)));
        QCOMPARE(port.readAll(), QByteArray(bytes));
        port.close();
        QVERIFY(!port.isOpen());
        port.close();
    }
}

void TestQextSerialPort::closedPortHasNothing()
{
    Pty pty;
    QextSerialPort port(pty.portName());
    QVERIFY(port.open(QIODevice::ReadWrite));
    QVERIFY(pty.send("left behind"));
    QTRY_COMPARE(port.bytesAvailable(), 11);
    port.close();
    port.flush();
    QCOMPARE(port.bytesAvailable(), 0);
    QCOMPARE(port.bytesToWrite(), 0);
    QCOMPARE(port.size(), 0);
    QVERIFY(!port.canReadLine());
}

void TestQextSerialPort::closedPortHasNoControlLines()
{
    QextSerialPort data_terminal;
    data_terminal.setDtr(true);
    QCOMPARE(data_terminal.lastError(), ulong(E_INVALID_FD));
    QextSerialPort request;
    request.setRts(true);
    QCOMPARE(request.lastError(), ulong(E_INVALID_FD));
}

QTEST_GUILESS_MAIN(TestQextSerialPort)
#include "tst_qext_serial_port.moc"
