#include "tests/support/cloud_process.h"
#include "tests/support/log_recorder.h"
#include "tests/system/plugin.h"

#include <QTest>

namespace {

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

/// The plug-in and the simulated service over HTTPS: values come, writes arrive.
class TestPluginService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void valuesOfAllTypes_data();
    void valuesOfAllTypes();
    void writesOfAllTypes_data();
    void writesOfAllTypes();
    void writeBurst();
    void certificates_data();
    void certificates();

private:
    CloudProcess cloud_;
    std::unique_ptr<LogRecorder> log_;
    PluginDriver host_;
};

void TestPluginService::initTestCase()
{
    log_.reset(new LogRecorder);
    QVERIFY(cloud_.start());
    host_.use(cloud_);
    const struct
    {
        const char* id;
        const char* type;
    } items[] = {
        {"boiler-on", "Bit"},
        {"recipe-number", "16Bit-BCD"},
        {"hall-offset", "16Bit-INT"},
        {"recipe-batch", "16Bit-UINT"},
        {"recipe-options", "16Bit-HEX"},
        {"recipe-article", "32Bit-BCD"},
        {"recipe-offset", "32Bit-INT"},
        {"recipe-flour", "32Bit-UINT"},
        {"recipe-tag", "32Bit-HEX"},
        {"recipe-salt", "32Bit-FLOAT"},
        {"hall-display", "String"},
        {"recipe-name", "String"},
    };
    for (const auto& item : items)
        host_.serve(item.id, item.id, item.type);
    host_.start();
    QTRY_VERIFY(log_->contains("[TOVIK IoT] Connected to Cloud Success!"));
}

void TestPluginService::cleanup()
{
    cloud_.control("DELETE", "/faults");
    log_->take();
}

void TestPluginService::valuesOfAllTypes_data()
{
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<QByteArray>("expected");
    auto row = [](const char* type, const char* item, const QByteArray& bytes) {
        QTest::newRow(type) << QByteArray(item) << bytes;
    };
    row("Bit", "boiler-on", hex("01"));
    row("16Bit-BCD", "recipe-number", hex("4200"));
    row("16Bit-INT", "hall-offset", hex("fdff"));
    row("16Bit-UINT", "recipe-batch", hex("b004"));
    row("16Bit-HEX", "recipe-options", hex("ff00"));
    row("32Bit-BCD", "recipe-article", hex("11472010"));
    row("32Bit-INT", "recipe-offset", hex("f4ffffff"));
    row("32Bit-UINT", "recipe-flour", hex("80fc0a00"));
    row("32Bit-HEX", "recipe-tag", hex("eeffc000"));
    row("32Bit-FLOAT", "recipe-salt", hex("00026146"));
    row("String, padded", "hall-display", QByteArray("Willkommen\0\0", 12));
    // The service sends UTF-8, the plug-in takes the bytes one by one.
    row("String above 0x7F", "recipe-name", QByteArray("Br\xC3\xB6tchen\0\0", 12));
}

void TestPluginService::valuesOfAllTypes()
{
    QFETCH(QByteArray, item);
    QFETCH(QByteArray, expected);
    QTRY_COMPARE(host_.read(item.constData(), 12).bytes, expected);
    QCOMPARE(host_.read(item.constData(), 12).status, 0);
}

void TestPluginService::writesOfAllTypes_data()
{
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("json");
    auto row = [](const char* type, const char* item, const QByteArray& bytes, const char* json) {
        QTest::newRow(type) << QByteArray(item) << bytes << QByteArray(json);
    };
    row("Bit", "boiler-on", hex("00"), "false");
    row("16Bit-BCD", "recipe-number", hex("3412"), "1234");
    row("16Bit-INT", "hall-offset", hex("feff"), "-2");
    row("16Bit-UINT", "recipe-batch", hex("ffff"), "65535");
    row("16Bit-HEX", "recipe-options", hex("ab00"), "\"00AB\"");
    row("32Bit-BCD", "recipe-article", hex("78563412"), "12345678");
    row("32Bit-INT", "recipe-offset", hex("ffffffff"), "-1");
    row("32Bit-UINT", "recipe-flour", hex("ffffffff"), "4294967295");
    row("32Bit-HEX", "recipe-tag", hex("efbeadde"), "\"DEADBEEF\"");
    row("32Bit-FLOAT", "recipe-salt", hex("0000c03f"), "1.5");
    row("String", "hall-display", QByteArray("Hello/\"\0x", 9), "\"Hello/\\\"\"");
}

void TestPluginService::writesOfAllTypes()
{
    QFETCH(QByteArray, item);
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, json);
    const DriverAnswer answer = host_.write(item.constData(), bytes);
    QCOMPARE(answer.bytes, bytes);
    QCOMPARE(answer.status, 0);
    QTRY_VERIFY(log_->contains("[TOVIK IoT] Write value done!"));
    const ServiceAnswer seen = cloud_.control("GET", "/items/" + item.toStdString());
    QCOMPARE(QByteArray::fromStdString(seen.json.at("value").dump()), json);
}

/// Writes are emitted at once and go out nested in each other; each arrives, once.
void TestPluginService::writeBurst()
{
    const int burst = 50;
    const auto received = [this] {
        return cloud_.control("GET", "/status").json.at("requests").value("write", 0);
    };
    const int before = received();
    for (int i = 0; i < burst; ++i) {
        const QByteArray bytes = QByteArray(1, char(i + 1)) + QByteArray(1, '\0');
        QCOMPARE(host_.write("recipe-batch", bytes).status, 0);
    }
    QTRY_COMPARE_WITH_TIMEOUT(log_->count("[TOVIK IoT] Write value done!"), burst, 20000);
    QCOMPARE(received() - before, burst);
    QCOMPARE(log_->count("[TOVIK IoT] Write value fail!"), 0);
}

void TestPluginService::certificates_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::newRow("self-signed") << QByteArray();
    QTest::newRow("expired") << QByteArray("expired");
    QTest::newRow("of another host") << QByteArray("wrong-host");
}

void TestPluginService::certificates()
{
    QFETCH(QByteArray, fault);
    if (!fault.isEmpty())
        QVERIFY(cloud_.addFault(fault.toStdString()) > 0);
    PluginDriver host;
    host.use(cloud_);
    host.start();
    QTRY_VERIFY(log_->contains("[TOVIK IoT] Connected to Cloud Success!"));
}

QTEST_GUILESS_MAIN(TestPluginService)
#include "tst_plugin_service.moc"
