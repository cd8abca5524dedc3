#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/interop_run.h"
#include "tests/examples/modbus/libmodbus_server.h"
#include "tests/examples/modbus/port_pair.h"
#include "tests/examples/modbus/pymodbus_server.h"

#include <QHostAddress>
#include <QTest>

using namespace modbus;

// The driver against devices that other people wrote. PEER and LINK say which; this file is built
// once for each.

namespace {

// Requests without one wrong value. Over TCP ten thousand; a serial line has a silence of two
// milliseconds before each, so these are fewer.
const int requests_by_tcp = 10000;
const int requests_by_rtu = 2000;
const unsigned seed = 20;

const int patience = 30000; // ms

bool isTcp()
{
    return qstrcmp(LINK, "tcp") == 0;
}

bool isLibmodbus()
{
    return qstrcmp(PEER, "libmodbus") == 0;
}

} // namespace

class TestModbusInterop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyValueIsRight();
    void exceptions_data();
    void exceptions();
    void bitsOfRegisters();
    void broadcast();
    void nobodyAnswersForAnotherStation();

private:
    Transport transport() const { return isTcp() ? Transport::Tcp : Transport::Rtu; }
    void openLink();

    std::unique_ptr<PortPair> ports_;
    std::unique_ptr<LibmodbusServer> libmodbus_;
    std::unique_ptr<PymodbusServer> pymodbus_;
    DrvEthernet ethernet_;
    DrvSerial serial_;
    std::unique_ptr<ModbusDriver> driver_;
    std::unique_ptr<MiniatureHost> host_;
};

void TestModbusInterop::initTestCase()
{
    QString port_name;
    if (!isTcp()) {
        ports_.reset(new PortPair);
        port_name = ports_->secondPort();
    }
    if (isLibmodbus())
        libmodbus_.reset(new LibmodbusServer(transport(), port_name));
    else
        pymodbus_.reset(new PymodbusServer(transport(), port_name));
    openLink();
}

void TestModbusInterop::openLink()
{
    ethernet_.response_timeout = patience;
    serial_.response_timeout = patience;
    if (isTcp()) {
        const int port = isLibmodbus() ? libmodbus_->port() : pymodbus_->port();
        ethernet_.connectToHost(QHostAddress(QHostAddress::LocalHost), quint16(port));
        QVERIFY(ethernet_.waitForConnected(patience));
    } else {
        serial_.setPortName(ports_->firstPort());
        serial_.setBaudRate(BAUD115200);
        QVERIFY(serial_.open(QIODevice::ReadWrite));
    }
    driver_.reset(new ModbusDriver(QString(), isTcp() ? nullptr : &serial_, &ethernet_));
    host_.reset(new MiniatureHost(driver_.get()));
}

void TestModbusInterop::everyValueIsRight()
{
    interop::Run run(*host_, seed);
    const int requests = isTcp() ? requests_by_tcp : requests_by_rtu;
    for (int i = 0; i < requests; ++i)
        QVERIFY2(run.step(), qPrintable(run.complaint()));
    QCOMPARE(run.functions().keys(), (QList<int>{1, 2, 3, 4, 5, 6, 15, 16}));
    for (const int count : run.functions())
        QVERIFY(count >= requests / 250);
}

void TestModbusInterop::exceptions_data()
{
    QTest::addColumn<int>("exception");
    // libmodbus knows no others and, of these, not how to send 9.
    for (const int exception : {1, 2, 3, 4, 5, 6, 8, 10, 11})
        QTest::addRow("%d", exception) << exception;
}

void TestModbusInterop::exceptions()
{
    QFETCH(int, exception);
    const QByteArray number = QByteArray::number(interop::exceptions_at + exception + 1);
    for (const char* area : {"0x", "1x", "3x", "4x"}) {
        const QByteArray address = area + number;
        COMPARE_STATUS(host_->read(readOf(address.constData(), 2)).status, Exception + exception);
    }
    for (const char* area : {"0x", "4x"}) {
        const QByteArray address = area + number;
        for (const int size : {2, 4}) {
            const Asked asked = writeOf(address.constData(), QByteArray(size, '\1'));
            COMPARE_STATUS(host_->write(asked).status, Exception + exception);
        }
    }
    // An address that the device lacks, by its own judgement.
    COMPARE_STATUS(host_->read(readOf("4x8000", 2)).status, Exception + 2);
}

void TestModbusInterop::bitsOfRegisters()
{
    COMPARE_STATUS(host_->write(writeOf("4x100", hex("0000"))).status, Ok);
    COMPARE_STATUS(host_->write(writeOf("4x100.3", hex("01"))).status, Ok);
    COMPARE_STATUS(host_->write(writeOf("4x100.15", hex("01"))).status, Ok);
    QCOMPARE(host_->read(readOf("4x100", 2)).data.toHex(), QByteArray("0880"));
    QCOMPARE(host_->read(readOf("4x100.3", 1)).data.toHex(), QByteArray("01"));
    QCOMPARE(host_->read(readOf("4x100.4", 1)).data.toHex(), QByteArray("00"));
    COMPARE_STATUS(host_->write(writeOf("4x100.3", hex("00"))).status, Ok);
    QCOMPARE(host_->read(readOf("4x100", 2)).data.toHex(), QByteArray("0080"));
}

void TestModbusInterop::broadcast()
{
    if (isTcp())
        QSKIP("only a serial line has broadcasts");
    Asked asked = writeOf("4x200", hex("3412"));
    asked.station = 0;
    COMPARE_STATUS(host_->write(asked).status, Ok);
    const Got got = host_->read(readOf("4x200", 2));
    COMPARE_STATUS(got.status, Ok);
    QCOMPARE(got.data.toHex(), QByteArray("3412"));
}

void TestModbusInterop::nobodyAnswersForAnotherStation()
{
    if (isTcp())
        QSKIP("a device answers for every unit over TCP, as it likes");
    serial_.response_timeout = 200;
    Q_EMIT driver_->SigUpdateDrvSerial();
    Asked asked = readOf("4x1", 2);
    asked.station = 9;
    COMPARE_STATUS(host_->read(asked).status, NoAnswerInTime);
}

QTEST_GUILESS_MAIN(TestModbusInterop)
#include "tst_modbus_interop.moc"
