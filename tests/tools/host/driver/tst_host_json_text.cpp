#include "tools/host/driver/driver_session.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::driver;

class TestHostJsonText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesValues_data();
    void writesValues();
    void writesAnswers();
    void writesTimesAsUtc();
};

void TestHostJsonText::writesValues_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<QString>("json");
    const auto row = [](const char* name, const char* type, const char* hex, const char* json) {
        QTest::newRow(name) << QString::fromLatin1(type) << QByteArray(hex)
                            << QString::fromUtf8(json);
    };
    row("bit", "Bit", "01", "1");
    row("negative", "16Bit-INT", "feff", "-2");
    row("largest", "32Bit-UINT", "ffffffff", "4294967295");
    row("BCD", "16Bit-BCD", "3412", "1234");
    row("hexadecimal digits are a text", "16Bit-HEX", "3412", "\"1234\"");
    row("float", "32Bit-FLOAT", "cdcccc3d", "0.1");
    row("infinite", "32Bit-FLOAT", "0000807f", "null");
    row("not a number", "32Bit-FLOAT", "0000c07f", "null");
    row("text", "String", "fc22", "\"ü\\\"\"");
    row("too few bytes", "16Bit-INT", "00", "null");
}

void TestHostJsonText::writesValues()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, hex);
    QFETCH(QString, json);
    const value::ItemType& item_type = *value::findItemType(type);
    QCOMPARE(value::jsonLine(value::jsonValue(
                 item_type, value::decodeValue(item_type, QByteArray::fromHex(hex)))),
             json);
}

void TestHostJsonText::writesAnswers()
{
    const config::ItemConfig item = {QStringLiteral("a"), QStringLiteral("i"),
                                     value::findItemType(QStringLiteral("16Bit-INT")), 0};
    value::OrderedJson line;
    addAnswer(line, item, {true, QByteArray::fromHex("0a00"), 0x400F0007}, QStringLiteral("10"));
    QCOMPARE(
        value::jsonLine(line),
        QStringLiteral("{\"item\":\"a\",\"type\":\"16Bit-INT\",\"value\":10,\"bytes\":\"0a00\","
                       "\"status\":\"0x400F0007\",\"status_text\":\"service error 7\"}"));
    value::OrderedJson silent;
    addAnswer(silent, item, Answer(), std::nullopt);
    QCOMPARE(value::jsonLine(silent),
             QStringLiteral("{\"item\":\"a\",\"type\":\"16Bit-INT\",\"value\":null,\"bytes\":\"\","
                            "\"status\":null,\"status_text\":\"no answer\"}"));
}

void TestHostJsonText::writesTimesAsUtc()
{
    const QDateTime time(QDate(2024, 5, 1), QTime(12, 0, 1, 5), Qt::OffsetFromUTC, 3600);
    QCOMPARE(value::jsonTime(time), QStringLiteral("2024-05-01T11:00:01.005Z"));
}

QTEST_APPLESS_MAIN(TestHostJsonText)
#include "tst_host_json_text.moc"
