#include "tests/compat/serial_bench.h"
#include "tests/support/pty.h"

#include <QSerialPort>
#include <QSignalSpy>
#include <QTest>

#include <memory>

class TestQextSerialPortConstruction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void constructors();
    void constructorsSettingsReachTheLine();
    void everyConstructorMakesAWholePort_data();
    void everyConstructorMakesAWholePort();
    void openPortClosesAtItsEnd();
};

void TestQextSerialPortConstruction::constructors()
{
    const QList<int> defaults{BAUD9600, DATA_8, PAR_NONE, STOP_1, FLOW_OFF};
    const QList<int> others{BAUD19200, DATA_7, PAR_EVEN, STOP_2, FLOW_XONXOFF};
    const QString name = QString::fromLatin1("/dev/ttyS9");
    QObject parent;

    const QextSerialPort plain;
    QCOMPARE(settingsOf(plain), defaults);
    QCOMPARE(plain.queryMode(), QextSerialPort::EventDriven);
    QVERIFY(plain.portName().isEmpty());
    QVERIFY(!plain.isOpen());
    QVERIFY(plain.isSequential());
    QCOMPARE(plain.lastError(), ulong(E_NO_ERROR));

    const auto* named = new QextSerialPort(name, QextSerialPort::Polling, &parent);
    QCOMPARE(settingsOf(*named), defaults);
    QCOMPARE(named->queryMode(), QextSerialPort::Polling);
    QVERIFY(named->portName().endsWith(QLatin1String("ttyS9")));
    QCOMPARE(named->parent(), &parent);

    QextSerialPort set(other_settings, QextSerialPort::Polling);
    QCOMPARE(settingsOf(set), others);
    QCOMPARE(set.queryMode(), QextSerialPort::Polling);
    set.setQueryMode(QextSerialPort::EventDriven);
    QCOMPARE(set.queryMode(), QextSerialPort::EventDriven);

    const QextSerialPort all(name, other_settings);
    QCOMPARE(settingsOf(all), others);
    QVERIFY(all.portName().endsWith(QLatin1String("ttyS9")));
}

void TestQextSerialPortConstruction::constructorsSettingsReachTheLine()
{
    Pty pty;
    QVERIFY(pty.isValid());
    QextSerialPort port(pty.portName(), other_settings);
    QVERIFY(port.open(QIODevice::ReadWrite));
    const termios line = pty.attributes();
    QCOMPARE(cfgetospeed(&line), speed_t(B19200));
    QVERIFY(line.c_cflag & CSTOPB);
    QVERIFY(line.c_iflag & IXON);
    // A pseudo terminal has eight data bits and no parity, whatever it is asked for.
    const auto* below = port.findChild<QSerialPort*>();
    QVERIFY(below);
    QCOMPARE(below->dataBits(), QSerialPort::Data7);
    QCOMPARE(below->parity(), QSerialPort::EvenParity);
}

void TestQextSerialPortConstruction::everyConstructorMakesAWholePort_data()
{
    QTest::addColumn<bool>("has_name");
    QTest::addColumn<bool>("has_settings");
    QTest::newRow("plain") << false << false;
    QTest::newRow("with a name") << true << false;
    QTest::newRow("with settings") << false << true;
    QTest::newRow("with a name and settings") << true << true;
}

void TestQextSerialPortConstruction::everyConstructorMakesAWholePort()
{
    QFETCH(bool, has_name);
    QFETCH(bool, has_settings);
    Pty pty;
    const QString name = pty.portName();
    QextSerialPort* made = nullptr;
    QObject parent;
    const auto mode = QextSerialPort::EventDriven;
    if (has_name && has_settings)
        made = new QextSerialPort(name, other_settings, mode, &parent);
    else if (has_name)
        made = new QextSerialPort(name, mode, &parent);
    else if (has_settings)
        made = new QextSerialPort(other_settings, mode, &parent);
    else
        made = new QextSerialPort(mode, &parent);
    QextSerialPort& port = *made;
    if (!has_name)
        port.setPortName(name);
    QVERIFY(port.open(QIODevice::ReadWrite));
    const termios line = pty.attributes();
    QCOMPARE(cfgetospeed(&line), speed_t(has_settings ? B19200 : B9600));

    QSignalSpy arrivals(&port, &QIODevice::readyRead);
    QVERIFY(pty.send("in"));
    QTRY_VERIFY(!arrivals.isEmpty());
    QSignalSpy departures(&port, &QIODevice::bytesWritten);
    QCOMPARE(port.write("out"), 3);
    QTRY_VERIFY(!departures.isEmpty());
    pty.close(); // an error of the port below is heard, too
    QTRY_VERIFY(!port.isOpen());
}

void TestQextSerialPortConstruction::openPortClosesAtItsEnd()
{
    Pty pty;
    std::unique_ptr<QextSerialPort> port(new QextSerialPort(pty.portName()));
    QSignalSpy closings(port.get(), &QIODevice::aboutToClose);
    QVERIFY(port->open(QIODevice::ReadWrite));
    port.reset();
    QCOMPARE(closings.size(), 1);
    port.reset(new QextSerialPort(pty.portName()));
    const QSignalSpy none(port.get(), &QIODevice::aboutToClose);
    port.reset();
    QCOMPARE(none.size(), 0);
}

QTEST_GUILESS_MAIN(TestQextSerialPortConstruction)
#include "tst_qext_serial_port_construction.moc"
