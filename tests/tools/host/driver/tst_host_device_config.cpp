#include "tools/host/driver/device_config.h"
#include "tools/host/terminal/exit_code.h"

#include "interface/drv_ethernet.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tovik_host;
using namespace tovik_host::driver;

class TestHostDeviceConfig : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAddresses_data();
    void readsAddresses();
    void hasDefaults();
    void optionsWin();
    void takesItemsByName();
    void refuses_data();
    void refuses();
    void fillsLinks();

private:
    QString writeFile(const QByteArray& text);

    QTemporaryDir folder_;
};

namespace {

config::CommonOptions options()
{
    config::CommonOptions common;
    common.library = QStringLiteral("lib.so");
    common.link.address = QStringLiteral("tcp:h:1");
    return common;
}

QString errorOf(const config::CommonOptions& common, const QStringList& addresses)
{
    QStringList warnings;
    try {
        deviceConfig(common, addresses, &warnings);
    } catch (const terminal::UsageError& error) {
        return error.message();
    }
    return QString();
}

const char file_text[] =
    "{\"link\": {\"address\": \"serial:/dev/x\", \"response_timeout\": 7, \"retries\": 3},\n"
    "\"items\": [{\"name\": \"A\", \"address\": \"4x1\"}, {\"name\": \"B\"}]}";

} // namespace

QString TestHostDeviceConfig::writeFile(const QByteArray& text)
{
    QFile file(folder_.filePath(QStringLiteral("c.json")));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

void TestHostDeviceConfig::readsAddresses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("type");
    const auto row = [](const char* name, const char* text, const char* address, const char* type) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(address)
                            << QString::fromUtf8(type);
    };
    row("the options' type", "4x1", "4x1", "16Bit-INT");
    row("its own type", "4x1=32Bit-FLOAT", "4x1", "32Bit-FLOAT");
    row("with an equals sign in it", "a=b=Bit", "a=b", "Bit");
}

void TestHostDeviceConfig::readsAddresses()
{
    QFETCH(QString, text);
    QFETCH(QString, address);
    QFETCH(QString, type);
    config::CommonOptions common = options();
    common.request.type = QStringLiteral("16Bit-INT");
    common.request.station = 3;
    common.request.field1 = 4;
    common.request.extra1 = 5;
    common.request.extra2 = 6;
    QStringList warnings;
    const config::ItemConfig item = deviceConfig(common, {text}, &warnings).items.first();
    QCOMPARE(item.name, address);
    QCOMPARE(item.request.address, address);
    QCOMPARE(QString::fromLatin1(item.type->name), type);
    QCOMPARE(item.request.station, 3);
    QCOMPARE(item.request.field1, 4);
    QCOMPARE(item.request.extra1, 5);
    QCOMPARE(item.request.extra2, 6);
}

void TestHostDeviceConfig::hasDefaults()
{
    QStringList warnings;
    const DeviceConfig config = deviceConfig(options(), {QStringLiteral("a")}, &warnings);
    QCOMPARE(linkText(config.link), QStringLiteral("tcp:h:1"));
    QCOMPARE(config.settings.request_delay, 0);
    QCOMPARE(config.settings.response_timeout, 1000);
    QCOMPARE(config.settings.retries, 0);
    QCOMPARE(config.settings.link_param_a, 0);
    QCOMPARE(config.settings.link_param_b, 255);
    QCOMPARE(config.unit, QStringLiteral("tovik-host"));
    QCOMPARE(config.open_milliseconds, 10000);
    QCOMPARE(config.items.first().type->name, "16Bit-UINT");
    QCOMPARE(config.items.first().request.station, 1);
}

void TestHostDeviceConfig::optionsWin()
{
    config::CommonOptions common = options();
    common.config = writeFile(file_text);
    common.link.retries = 0;
    QStringList warnings;
    const DeviceConfig config = deviceConfig(common, {}, &warnings);
    QCOMPARE(linkText(config.link), QStringLiteral("tcp:h:1"));
    QCOMPARE(config.settings.response_timeout, 7);
    QCOMPARE(config.settings.retries, 0);
    common.link.address.reset();
    QCOMPARE(linkText(deviceConfig(common, {}, &warnings).link),
             QStringLiteral("serial:/dev/x,9600,8N1"));
}

void TestHostDeviceConfig::takesItemsByName()
{
    config::CommonOptions common = options();
    common.config = writeFile(file_text);
    QStringList warnings;
    QCOMPARE(deviceConfig(common, {}, &warnings).items.size(), 2);
    const DeviceConfig config =
        deviceConfig(common, {QStringLiteral("B"), QStringLiteral("A")}, &warnings);
    QCOMPARE(config.items.first().request.address, QStringLiteral("B"));
    QCOMPARE(config.items.last().request.address, QStringLiteral("4x1"));
    QVERIFY(errorOf(common, {QStringLiteral("4x1")})
                .endsWith(QLatin1String("c.json has no item \"4x1\"; with --config items are "
                                        "named, without it they are addressed")));
}

void TestHostDeviceConfig::refuses_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("start");
    const auto row = [](const char* name, const char* address, const char* type, int length,
                        const char* start) {
        QTest::newRow(name) << QString::fromUtf8(address) << QString::fromUtf8(type) << length
                            << QString::fromUtf8(start);
    };
    row("unknown type", "a", "INT", 0, "--type: \"INT\" is no type; the types are: Bit");
    row("unknown type of an address", "a=INT", "Bit", 0,
        "\"a=INT\": after \"=\": \"INT\" is no type; the types are: Bit");
    row("no type of an address", "a=", "Bit", 0, "\"a=\": after \"=\": \"\" is no type");
    row("type alone", "=Bit", "Bit", 0, "\"=Bit\": the address is empty");
    row("text without a length", "a", "String", 0, "a: a String needs its length: --length BYTES");
    row("length without a text", "a", "Bit", 4, "--length is for texts: give --type String");
}

void TestHostDeviceConfig::refuses()
{
    QFETCH(QString, address);
    QFETCH(QString, type);
    QFETCH(int, length);
    QFETCH(QString, start);
    config::CommonOptions common = options();
    common.request.type = type;
    if (length > 0)
        common.request.length = length;
    const QString error = errorOf(common, {address});
    QVERIFY2(error.startsWith(start), qPrintable(error));
}

void TestHostDeviceConfig::fillsLinks()
{
    DrvEthernet link;
    const LinkSettings settings = {1, 2, 3, 4, 5};
    settings.fill(&link);
    QCOMPARE(link.request_delay, 1);
    QCOMPARE(link.response_timeout, 2);
    QCOMPARE(link.retry_count, 3);
    QCOMPARE(link.link_param_a, 4);
    QCOMPARE(link.link_param_b, 5);
    QCOMPARE(link.link_name, QStringLiteral("link"));
}

QTEST_GUILESS_MAIN(TestHostDeviceConfig)
#include "tst_host_device_config.moc"
