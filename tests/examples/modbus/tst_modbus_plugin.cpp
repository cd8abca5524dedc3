#include "framework/result_code.h"
#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "interface/drv_serial.h"
#include "interface/drvlib.h"
#include "tests/support/scripted_device.h"

#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QTest>

#include <dlfcn.h>
#include <memory>

// The built driver library, loaded by path. This process has the interface compiled into itself, as
// a host does, and links neither the driver nor the library that it stands on.

namespace {

const int patience = 30000; // ms

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

template <typename Function>
Function* entryPoint(const char* name)
{
    static void* const library = dlopen(MODBUS_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* const symbol = library ? dlsym(library, name) : nullptr;
    if (!symbol)
        qFatal("%s", dlerror());
    return reinterpret_cast<Function*>(symbol);
}

std::unique_ptr<DrvInterface> create(void* name, void* serial, DrvEthernet* link)
{
    return std::unique_ptr<DrvInterface>(
        entryPoint<decltype(create_drvlib)>("create_drvlib")(name, serial, link));
}

template <int size>
int wholeRequest(const QByteArray& input)
{
    return input.size() >= size ? size : 0;
}

ScriptedDevice::Behaviour answering(const char* hex)
{
    const QByteArray answer = QByteArray::fromHex(hex);
    return [answer](const QByteArray&) { return QList<DeviceStep>{{answer}}; };
}

/// What \a program prints about the library, in lines; none if it fails.
QStringList linesOf(const char* program, const QStringList& options)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(latin1(program), options + QStringList(QFile::decodeName(MODBUS_LIBRARY)));
    if (!process.waitForFinished(patience) || process.exitCode() != 0)
        return QStringList();
    return QString::fromLocal8Bit(process.readAllStandardOutput()).split(QLatin1Char('\n'));
}

} // namespace

class TestModbusPlugin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void version();
    void exports();
    void wordsForItsCodes();
    void dynamicSection_data();
    void dynamicSection();
    void readsOverTcp();
    void readsOverSerialLine();
    void withoutALink();

public Q_SLOTS:
    void onResponse(QString, QString, QByteArray ba, int status);

private:
    void read(DrvInterface* asked);

    int answers_ = 0;
    int status_ = -1;
    QByteArray bytes_;
};

void TestModbusPlugin::init()
{
    answers_ = 0;
    status_ = -1;
    bytes_.clear();
}

void TestModbusPlugin::onResponse(QString, QString, QByteArray ba, int status)
{
    ++answers_;
    bytes_ = ba;
    status_ = status;
}

/// Two registers of station 1, by the signals' texts, as a host connects to any driver.
void TestModbusPlugin::read(DrvInterface* asked)
{
    QVERIFY(connect(asked, SIGNAL(SigResponse(QString, QString, QByteArray, int)), this,
                    SLOT(onResponse(QString, QString, QByteArray, int))));
    QSharedPointer<AddrData> address(new AddrData);
    address->address = latin1("4x17");
    address->data_length = 4;
    Q_EMIT asked->SigGetValuesByteArray(latin1("unit"), latin1("link"), 1, address);
}

void TestModbusPlugin::version()
{
    QTest::ignoreMessage(QtDebugMsg, "\"[Driver Version] v1.0.0\"");
    QCOMPARE(entryPoint<decltype(drv_version)>("drv_version")(), 0x10000U);
}

void TestModbusPlugin::exports()
{
    QStringList names;
    for (const QString& line : linesOf("nm", {latin1("-DC"), latin1("--defined-only")})) {
        if (!line.isEmpty())
            names.append(line.section(QLatin1Char(' '), 2));
    }
    names.sort();
    QCOMPARE(names, (QStringList{latin1("create_drvlib"), latin1("drv_result_codes"),
                                 latin1("drv_version")}));
}

void TestModbusPlugin::wordsForItsCodes()
{
    const auto* words = entryPoint<decltype(drv_result_codes)>("drv_result_codes")();
    QCOMPARE(result_code::textOf(0x400B010A, words), latin1("the link is not open"));
}

void TestModbusPlugin::dynamicSection_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<QString>("value");
    QTest::newRow("its name") << latin1("(SONAME)") << latin1("[libmodbus_drv.so.1]");
    QTest::newRow("stands on") << latin1("(NEEDED)") << latin1("[libtovik_iot.so.1]");
    QTest::newRow("never unloaded") << latin1("(FLAGS_1)") << latin1("NODELETE");
}

void TestModbusPlugin::dynamicSection()
{
    QFETCH(QString, tag);
    QFETCH(QString, value);
    const QStringList lines = linesOf("readelf", {latin1("-dW")}).filter(tag);
    QCOMPARE(lines.filter(value).size(), 1);
}

void TestModbusPlugin::readsOverTcp()
{
    ScriptedDevice device(ScriptedDevice::Line::Tcp, wholeRequest<12>);
    device.setBehaviour(answering("00010000000701030412345678"));
    DrvEthernet link;
    link.response_timeout = patience;
    link.connectToHost(QHostAddress(QHostAddress::LocalHost), device.port());
    QVERIFY(link.waitForConnected(patience));
    QString name = latin1("modbus");
    const std::unique_ptr<DrvInterface> made = create(&name, nullptr, &link);
    read(made.get());
    QCOMPARE(answers_, 1);
    QCOMPARE(status_, 0);
    QCOMPARE(bytes_.toHex(), QByteArray("34127856"));
}

void TestModbusPlugin::readsOverSerialLine()
{
    ScriptedDevice device(ScriptedDevice::Line::Pty, wholeRequest<8>);
    device.setBehaviour(answering("010304123456788107"));
    DrvSerial link(device.portName());
    link.response_timeout = patience;
    QVERIFY(link.open(QIODevice::ReadWrite));
    const std::unique_ptr<DrvInterface> made = create(nullptr, &link, nullptr);
    read(made.get());
    QCOMPARE(answers_, 1);
    QCOMPARE(status_, 0);
    QCOMPARE(bytes_.toHex(), QByteArray("34127856"));
}

void TestModbusPlugin::withoutALink()
{
    const std::unique_ptr<DrvInterface> made = create(nullptr, nullptr, nullptr);
    QCOMPARE(QByteArray(made->metaObject()->className()), QByteArray("ModbusDriver"));
    read(made.get());
    QCOMPARE(answers_, 1);
    QCOMPARE(status_, 0x400B010A);
    QVERIFY(bytes_.isEmpty());
}

QTEST_GUILESS_MAIN(TestModbusPlugin)
#include "tst_modbus_plugin.moc"
