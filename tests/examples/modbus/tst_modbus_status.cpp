#include "examples/modbus/modbus_status.h"

#include <QTest>

using namespace modbus;

namespace {

// Every code that the driver answers of its own.
const int own_codes[] = {BadAddress,      ReadOnlyArea,   BadLength,         TooLarge,
                         BeyondEnd,       BadElementSize, BadOrder,          BadStation,
                         BroadcastRead,   NotConnected,   BadFunctionChoice, LineNotSilent,
                         BadChecksum,     OtherStation,   OtherFunction,     OtherContent,
                         BadAnswerLength, NotModbus,      LinkLost};

} // namespace

/// What the codes are in words.
class TestModbusStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void framework();
    void ownCodes();
    void exceptions_data();
    void exceptions();
    void everyException();
    void nobodysCodes();
};

void TestModbusStatus::framework()
{
    QCOMPARE(int(Ok), 0);
    QCOMPARE(int(Stopped), 0x1002);
    QCOMPARE(int(NoAnswerInTime), 0x400A0000);
}

void TestModbusStatus::ownCodes()
{
    QStringList texts;
    for (const int code : own_codes) {
        const QString text = result_code::textOf(code, statusWords());
        QVERIFY2(!text.isEmpty(), qPrintable(QString::number(code, 16)));
        QVERIFY2(!texts.contains(text), qPrintable(text));
        texts += text;
    }
}

void TestModbusStatus::exceptions_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("1") << 0x400B0001 << "the device does not know the function (exception 1)";
    QTest::newRow("2") << 0x400B0002 << "the device has no such address (exception 2)";
    QTest::newRow("3") << 0x400B0003 << "the device refuses the value or the length (exception 3)";
    QTest::newRow("4") << 0x400B0004 << "the device failed (exception 4)";
    QTest::newRow("6") << 0x400B0006 << "the device is busy (exception 6)";
    QTest::newRow("10") << 0x400B000A << "the gateway has no path to the device (exception 10)";
    QTest::newRow("11") << 0x400B000B
                        << "the device behind the gateway does not answer (exception 11)";
    QTest::newRow("5, not an error") << 0x400B0005 << "the device answered with exception 5";
    QTest::newRow("255") << 0x400B00FF << "the device answered with exception 255";
}

void TestModbusStatus::exceptions()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    QCOMPARE(result_code::textOf(code, statusWords()), text);
}

void TestModbusStatus::everyException()
{
    for (int code = 0; code < 256; ++code) {
        const QString text = result_code::textOf(Exception + code, statusWords());
        QVERIFY2(text.contains(QString::asprintf("exception %d", code)), qPrintable(text));
    }
}

void TestModbusStatus::nobodysCodes()
{
    for (const int code : {0x400B0100, 0x400B010D, 0x400B0207, 0x400B0302})
        QVERIFY(result_code::textOf(code, statusWords()).isEmpty());
}

QTEST_APPLESS_MAIN(TestModbusStatus)
#include "tst_modbus_status.moc"
