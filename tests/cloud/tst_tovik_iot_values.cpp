#include "cloud/tovik_iot.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <limits>
#include <stdexcept>

Q_DECLARE_METATYPE(MonitorDataItem)

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const char no_groups[] = "{\"errorcode\":0,\"Number\":0,\"groups\":[]}";

PropertyTovikIotDataItem served(const char* id, const char* type, const QVariant& value)
{
    PropertyTovikIotDataItem item;
    item.name = latin1(id);
    item.dataitem_id = latin1(id);
    item.type = latin1(type);
    item.value = value;
    return item;
}

QList<MonitorDataItem> listOf(const QSignalSpy& spy, int index)
{
    return qvariant_cast<QList<MonitorDataItem>>(spy.at(index).first());
}

} // namespace

/// Reading, monitoring and writing of values.
class TestTovikIotValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void readRequest();
    void readReplies_data();
    void readReplies();
    void readValues_data();
    void readValues();
    void cycle();
    void cycleWithAFailingRead();
    void cycleOfAClientThatIsNotConnected();
    void cycleSeesItemsAddedMeanwhile();
    void monitorOfNothing();
    void monitorRunsOnceASecond();
    void writeRequest_data();
    void writeRequest();
    void writeReplies_data();
    void writeReplies();
    void writeOfNumbersThatJsonCannotHold();
    void writeWhileDisconnectedIsSent();

private:
    void connectClient();

    QScopedPointer<ScriptedService> service_;
    PropertyTovikIot property_;
    QScopedPointer<TovikIot> client_;
    QScopedPointer<LogRecorder> log_;
};

void TestTovikIotValues::init()
{
    service_.reset(new ScriptedService);
    property_ = PropertyTovikIot();
    property_.host = service_->url();
    log_.reset(new LogRecorder);
    client_.reset(new TovikIot(&property_));
}

void TestTovikIotValues::cleanup()
{
    client_.reset();
    log_.reset();
    service_.reset();
}

void TestTovikIotValues::connectClient()
{
    service_->queue("{\"errorcode\":0,\"token\":\"T\"}");
    service_->queue(no_groups);
    client_->SlotInitialLater();
    service_->reset();
    log_->take();
}

void TestTovikIotValues::readRequest()
{
    service_->queue("{\"errorcode\":0,\"value\":5}");
    QCOMPARE(client_->ReadDataitemValue(latin1("T\xE9"), served("X/1", "16Bit-INT", 0)), 0);
    QCOMPARE(service_->paths(), QList<QByteArray>{"/qlix_api/imonitor/dataitem/value"});
    QCOMPARE(service_->bodies().first(),
             latin1("{\"dataitem_id\":\"X\\/1\",\"token\":\"T\xE9\"}").toLocal8Bit());
}

void TestTovikIotValues::readReplies_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("line");
    auto row = [](const char* name, const char* reply, int result, const char* line) {
        QTest::newRow(name) << QByteArray(reply) << result << latin1(line);
    };
    row("success", "{\"errorcode\":0,\"value\":5}", 0, "");
    row("not JSON", "?", 256, "[TOVIK IoT] ReadDataitemValue Error: parsing JSON failed!");
    row("no errorcode", "{\"value\":5}", 256, "[TOVIK IoT] ReadDataitemValue Error: no errorcode!");
    row("boolean errorcode", "{\"errorcode\":false}", 256,
        "[TOVIK IoT] ReadDataitemValue Error: errorcode invalid!");
    row("refused by the service", "{\"errorcode\":255}", 255,
        "[TOVIK IoT] ReadDataitemValue Error:  255");
    row("no value", "{\"errorcode\":0}", 256, "[TOVIK IoT] ReadDataitemValue Error: no value!");
    row("null value", "{\"errorcode\":0,\"value\":null}", 256,
        "[TOVIK IoT] ReadDataitemValue Error: no value!");
}

void TestTovikIotValues::readReplies()
{
    QFETCH(QByteArray, reply);
    QFETCH(int, result);
    QFETCH(QString, line);
    log_->take();
    service_->queue(reply);
    QCOMPARE(client_->ReadDataitemValue(latin1("T"), served("X", "16Bit-INT", 0)), result);
    QCOMPARE(log_->take(), line.isEmpty() ? QStringList() : QStringList(line));
}

void TestTovikIotValues::readValues_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("configured");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QVariant>("expected");
    auto row = [](const char* name, const char* type, const QVariant& configured, const char* json,
                  const QVariant& expected) {
        QTest::newRow(name) << latin1(type) << configured << QByteArray(json) << expected;
    };
    row("minus one", "16Bit-INT", 7, "-1", QVariant::fromValue<short>(-1));
    row("minus one unsigned is zero", "16Bit-UINT", 7, "-1",
        QVariant::fromValue<unsigned short>(0));
    row("65537 is 1 in sixteen bits", "16Bit-UINT", 7, "65537",
        QVariant::fromValue<unsigned short>(1));
    row("float", "32Bit-FLOAT", 7, "1.5", QVariant::fromValue<float>(1.5F));
    row("text for a float keeps the configured value", "32Bit-FLOAT", 7, "\"1.5\"", 7);
    row("number for a bit keeps the configured value", "Bit", true, "1", true);
    row("bit", "Bit", true, "false", false);
    row("hexadecimal text", "32Bit-HEX", 7, "\"00fF\"", latin1("00fF"));
    row("text in Latin-1", "String", 7, "\"\xE9\"", latin1("\xE9"));
    row("unknown type keeps the configured value", "Odd", 7, "5", 7);
    row("the service's second name is no configured type", "Ascii String", 7, "\"t\"", 7);
}

void TestTovikIotValues::readValues()
{
    QFETCH(QString, type);
    QFETCH(QVariant, configured);
    QFETCH(QByteArray, json);
    QFETCH(QVariant, expected);
    property_.dataitems.append(served("X", "16Bit-INT", configured));
    property_.dataitems.first().type = type;
    connectClient();
    QSignalSpy cycles(client_.data(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    service_->queue(QByteArray("{\"errorcode\":0,\"value\":") + json + QByteArray("}"));
    client_->SlotMonitorTimeOut();
    QCOMPARE(cycles.size(), 1);
    const QList<MonitorDataItem> list = listOf(cycles, 0);
    QCOMPARE(list.size(), 1);
    QCOMPARE(list.first().dataitem_id, latin1("X"));
    QCOMPARE(list.first().value.userType(), expected.userType());
    QCOMPARE(list.first().value, expected);
    // The configuration itself gets its values from the driver alone.
    QCOMPARE(property_.dataitems.first().value, configured);
}

void TestTovikIotValues::cycle()
{
    property_.dataitems << served("A", "Bit", 0) << served("B", "Bit", 0);
    connectClient();
    QSignalSpy cycles(client_.data(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    for (int round = 0; round < 2; ++round) {
        service_->queue("{\"errorcode\":0,\"value\":true}");
        service_->queue("{\"errorcode\":0,\"value\":false}");
        client_->SlotMonitorTimeOut();
    }
    QCOMPARE(cycles.size(), 2);
    QCOMPARE(listOf(cycles, 1).size(), 2);
    QCOMPARE(listOf(cycles, 1).at(0).dataitem_id, latin1("A"));
    QCOMPARE(listOf(cycles, 1).at(1).value, QVariant(false));
    QVERIFY(log_->lines().isEmpty());
}

void TestTovikIotValues::cycleWithAFailingRead()
{
    property_.dataitems << served("A", "Bit", 0) << served("B", "Bit", 0) << served("C", "Bit", 0);
    connectClient();
    QSignalSpy cycles(client_.data(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    QSignalSpy results(client_.data(), SIGNAL(EmitUpdateErrCode(int)));
    service_->queue("{\"errorcode\":0,\"value\":true}");
    service_->queue("{\"errorcode\":0}");
    client_->SlotMonitorTimeOut();
    QCOMPARE(service_->requests().size(), 2);
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().first().toInt(), 256);
    QCOMPARE(cycles.size(), 1);
    QCOMPARE(listOf(cycles, 0).size(), 1);
    QCOMPARE(listOf(cycles, 0).first().dataitem_id, latin1("A"));
    QCOMPARE(log_->take(), (QStringList{latin1("[TOVIK IoT] ReadDataitemValue Error: no value!"),
                                        latin1("[TOVIK IoT] Stop monitor!"),
                                        latin1("[TOVIK IoT] Disconnecting to Cloud ..."),
                                        latin1("[TOVIK IoT] Error handle type:  1"),
                                        latin1("[TOVIK IoT] Reconnect by timer: 1000 ms")}));
    const QList<QTimer*> timers = client_->findChildren<QTimer*>();
    QVERIFY(timers.first()->isActive());
    QVERIFY(!timers.last()->isActive());
}

void TestTovikIotValues::cycleOfAClientThatIsNotConnected()
{
    property_.dataitems << served("A", "Bit", 0);
    client_->StartMonitor();
    QSignalSpy cycles(client_.data(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    client_->SlotMonitorTimeOut();
    QCOMPARE(cycles.size(), 0);
    QVERIFY(service_->requests().isEmpty());
    QVERIFY(!client_->findChildren<QTimer*>().first()->isActive());
}

void TestTovikIotValues::cycleSeesItemsAddedMeanwhile()
{
    property_.dataitems << served("A", "Bit", 0);
    connectClient();
    service_->setHandler([&](const ScriptedRequest&) {
        if (property_.dataitems.size() == 1)
            property_.dataitems << served("B", "Bit", 0);
        return ScriptedReply::json("{\"errorcode\":0,\"value\":true}");
    });
    QSignalSpy cycles(client_.data(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    client_->SlotMonitorTimeOut();
    QCOMPARE(listOf(cycles, 0).size(), 2);
}

void TestTovikIotValues::monitorOfNothing()
{
    QSignalSpy cycles(client_.data(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    log_->take();
    client_->StartMonitor();
    QCOMPARE(log_->take(), QStringList{latin1("[TOVIK IoT] Start Monitor ...")});
    QVERIFY(client_->findChildren<QTimer*>().isEmpty());
    QCOMPARE(cycles.size(), 0);
}

/// The waiting itself is what is tested here: three cycles take between two and three seconds.
void TestTovikIotValues::monitorRunsOnceASecond()
{
    property_.dataitems << served("A", "16Bit-INT", 0);
    service_->setHandler([](const ScriptedRequest&) {
        return ScriptedReply::json("{\"errorcode\":0,\"value\":5}");
    });
    connectClient();
    QSignalSpy cycles(client_.data(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    QVERIFY(cycles.wait(5000));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(cycles.wait(5000));
    QVERIFY(cycles.wait(5000));
    QVERIFY2(timer.elapsed() > 1500, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(service_->requests().size(), 3);
}

void TestTovikIotValues::writeRequest_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("member");
    auto row = [](const char* name, const char* type, const QVariant& value, const char* member) {
        QTest::newRow(name) << latin1(type) << value << QByteArray(member);
    };
    row("five is true", "Bit", 5, ",\"value\":true");
    row("zero is false", "Bit", 0, ",\"value\":false");
    row("text of minus three", "16Bit-INT", latin1("-3"), ",\"value\":-3");
    row("letters are zero", "16Bit-INT", latin1("abc"), ",\"value\":0");
    row("70000 is not cut", "16Bit-UINT", 70000U, ",\"value\":70000");
    row("BCD goes as a plain number", "16Bit-BCD", 1234, ",\"value\":1234");
    row("32 bit BCD", "32Bit-BCD", 12345678U, ",\"value\":12345678");
    row("smallest integer", "32Bit-INT", std::numeric_limits<int>::min(), ",\"value\":-2147483648");
    row("largest unsigned", "32Bit-UINT", 4294967295U, ",\"value\":4294967295");
    row("whole float", "32Bit-FLOAT", QVariant::fromValue<float>(2.0F), ",\"value\":2");
    row("broken float", "32Bit-FLOAT", QVariant::fromValue<float>(2.25F), ",\"value\":2.250000");
    row("a tenth", "32Bit-FLOAT", QVariant::fromValue<float>(0.1F), ",\"value\":0.100000");
    row("float beyond 2^53", "32Bit-FLOAT", QVariant::fromValue<float>(1e17F),
        ",\"value\":99999998430674944.000000");
    row("hexadecimal", "16Bit-HEX", QByteArray("ab"), ",\"value\":\"ab\"");
    row("text with traps", "String", latin1("\"\\/\t"), ",\"value\":\"\\\"\\\\\\/\\t\"");
    row("unknown type has no value", "Odd", 5, "");
    row("the service's second name has no value", "Ascii String", latin1("t"), "");
}

void TestTovikIotValues::writeRequest()
{
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    QFETCH(QByteArray, member);
    PropertyTovikIotDataItem item = served("X", "Bit", 0);
    item.type = type;
    QCOMPARE(client_->WriteDataitemValue(latin1("T"), item, value), 0);
    QCOMPARE(service_->paths(), QList<QByteArray>{"/qlix_api/imonitor/dataitem/setValue"});
    QCOMPARE(service_->bodies().first(),
             QByteArray("{\"dataitem_id\":\"X\",\"token\":\"T\"") + member + QByteArray("}"));
}

void TestTovikIotValues::writeReplies_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("result");
    QTest::addColumn<QStringList>("log");
    auto row = [](const char* name, const char* reply, int result, const char* line) {
        QStringList log;
        if (*line)
            log << latin1(line);
        log << latin1(result ? "[TOVIK IoT] Write value fail!" : "[TOVIK IoT] Write value done!");
        if (result) {
            log << latin1("[TOVIK IoT] Disconnecting to Cloud ...")
                << latin1("[TOVIK IoT] Error handle type:  1")
                << latin1("[TOVIK IoT] Reconnect by timer: 1000 ms");
        }
        QTest::newRow(name) << QByteArray(reply) << result << log;
    };
    row("success", "{\"errorcode\":0,\"other\":1}", 0, "");
    row("not JSON", "?", 256, "[TOVIK IoT] WriteDataitemValue Error: parsing JSON failed!");
    row("no errorcode", "{}", 256, "[TOVIK IoT] WriteDataitemValue Error: no errorcode!");
    row("text errorcode", "{\"errorcode\":\"\"}", 256,
        "[TOVIK IoT] WriteDataitemValue Error: errorcode invalid!");
    row("refused by the service", "{\"errorcode\":7}", 7, "[TOVIK IoT] SetDataitemValue Error:  7");
}

void TestTovikIotValues::writeReplies()
{
    QFETCH(QByteArray, reply);
    QFETCH(int, result);
    QFETCH(QStringList, log);
    property_.dataitems << served("A", "Bit", 0) << served("B", "16Bit-INT", 3);
    connectClient();
    QSignalSpy results(client_.data(), SIGNAL(EmitUpdateErrCode(int)));
    QSignalSpy cycles(client_.data(), SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)));
    service_->queue(reply);
    client_->SlotWriteValue(1, 5);
    QCOMPARE(service_->bodies(),
             QList<QByteArray>{"{\"dataitem_id\":\"B\",\"token\":\"T\",\"value\":5}"});
    QCOMPARE(log_->take(), log);
    QCOMPARE(results.size(), result ? 1 : 0);
    if (result)
        QCOMPARE(results.first().first().toInt(), result);
    QCOMPARE(client_->findChildren<QTimer*>().first()->isActive(), result != 0);
    QCOMPARE(cycles.size(), 0);
    QCOMPARE(property_.dataitems.at(1).value, QVariant(3));
}

void TestTovikIotValues::writeOfNumbersThatJsonCannotHold()
{
    const float bad[] = {std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity()};
    property_.dataitems << served("A", "32Bit-FLOAT", 0);
    for (const float number : bad) {
        const QVariant value = QVariant::fromValue<float>(number);
        QVERIFY_EXCEPTION_THROWN(client_->SlotWriteValue(0, value), std::overflow_error);
    }
    QVERIFY(service_->requests().isEmpty());
}

void TestTovikIotValues::writeWhileDisconnectedIsSent()
{
    property_.dataitems << served("A", "Bit", 0);
    connectClient();
    client_->Disconnect2Cloud();
    log_->take();
    client_->SlotWriteValue(0, true);
    QCOMPARE(service_->bodies(),
             QList<QByteArray>{"{\"dataitem_id\":\"A\",\"token\":\"T\",\"value\":true}"});
    QCOMPARE(log_->take(), QStringList{latin1("[TOVIK IoT] Write value done!")});
}

QTEST_GUILESS_MAIN(TestTovikIotValues)
#include "tst_tovik_iot_values.moc"
