#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QTest>

using namespace modbus;

namespace {

/// Three holding registers from station 0x11.
Request readRequest()
{
    Request request;
    request.station = 0x11;
    request.pdu = PduRequest{operationOf(3), 0x6B, 3, QByteArray()};
    return request;
}

Request writeRequest()
{
    Request request;
    request.station = 0x11;
    request.pdu = PduRequest{operationOf(6), 1, 1, hex("0003")};
    return request;
}

const char* const good_pdu = "0306022B00000064";

QByteArray good()
{
    return rtuFrame(0x11, hex(good_pdu));
}

} // namespace

Q_DECLARE_METATYPE(modbus::Request)

class TestModbusRtu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void checksums_data();
    void checksums();
    void frames();
    void finds_data();
    void finds();
    void passesOver_data();
    void passesOver();
    void everyDamagedByteIsNoticed();
    void twoAnswersInOne();
    void oldInputIsNoAnswer();
    void noiseDoesNotFillTheMemory();
};

void TestModbusRtu::checksums_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("sent");
    const auto row = [](const char* bytes, const char* sent) {
        QTest::newRow(bytes) << hex(bytes) << hex(sent);
    };
    row("01 03 00 00 00 0A", "C5CD");
    row("01 04 02 FF FF", "B880");
    row("11 03 00 6B 00 03", "7687");
    row("02 07", "4112");
    row("", "FFFF");
    QTest::newRow("123456789 in characters") << QByteArray("123456789") << hex("374B");
}

void TestModbusRtu::checksums()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, sent);
    const unsigned crc = crc16(bytes);
    QCOMPARE(crc & 0xFF, uint(byteAt(sent, 0)));
    QCOMPARE(crc >> 8, uint(byteAt(sent, 1)));
    QCOMPARE(uint(crc16(bytes + sent)), 0U);
}

void TestModbusRtu::frames()
{
    RtuFraming framing;
    QCOMPARE(framing.frame(readRequest()).toHex(), QByteArray("1103006b00037687"));
    QCOMPARE(framing.answerSize(), good().size());
    framing.frame(writeRequest());
    QCOMPARE(framing.answerSize(), 8);
}

void TestModbusRtu::finds_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("status");
    const QByteArray exception = rtuFrame(0x11, hex("8302"));
    QTest::newRow("the answer") << good() << int(Ok);
    QTest::newRow("an exception") << exception << 0x400B0002;
    QTest::newRow("after noise") << hex("00FF1103") + good() << int(Ok);
    QTest::newRow("after another station's answer")
        << rtuFrame(0x12, hex(good_pdu)) + good() << int(Ok);
    QTest::newRow("after a damaged one") << good().replace(4, 1, "x") + good() << int(Ok);
    QTest::newRow("after a cut one") << good().left(7) + good() << int(Ok);
    QTest::newRow("before noise") << good() + hex("1103") << int(Ok);
    QTest::newRow("after an answer with fewer registers")
        << rtuFrame(0x11, hex("0304022B0000")) + good() << int(Ok);
    QTest::newRow("exception after noise") << hex("11") + exception << 0x400B0002;
}

void TestModbusRtu::finds()
{
    QFETCH(QByteArray, input);
    QFETCH(int, status);
    const Request request = readRequest();
    for (int portion = 1; portion <= input.size(); ++portion) {
        RtuFraming framing;
        framing.frame(request);
        Answer answer;
        bool found = false;
        for (int at = 0; at < input.size() && !found; at += portion) {
            framing.add(input.mid(at, portion));
            found = framing.take(&answer);
        }
        QVERIFY2(found, qPrintable(QString::number(portion)));
        COMPARE_STATUS(answer.status, status);
        if (status == Ok)
            QCOMPARE(answer.pdu.toHex(), hex(good_pdu).toHex());
    }
}

void TestModbusRtu::passesOver_data()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("failure");
    const auto row = [](const char* name, const Request& request, const QByteArray& input,
                        int failure) { QTest::newRow(name) << request << input << failure; };
    const Request read = readRequest();
    row("nothing", read, QByteArray(), NoAnswerInTime);
    row("cut", read, good().left(good().size() - 1), BadAnswerLength);
    row("first byte alone", read, good().left(1), BadAnswerLength);
    row("damaged value", read, good().replace(4, 1, "x"), BadChecksum);
    row("damaged checksum", read, good().replace(9, 1, "x"), BadChecksum);
    row("damaged exception", read, rtuFrame(0x11, hex("8302")).replace(2, 1, "\3"),
        BadAnswerLength);
    row("noise", read, hex("000000"), BadChecksum);
    row("other station", read, rtuFrame(0x12, hex(good_pdu)), OtherStation);
    row("other function", read, rtuFrame(0x11, hex("0406022B00000064")), OtherFunction);
    row("other station, function alone", read, rtuFrame(0x12, hex("03")), OtherStation);
    row("exception without its code", read, rtuFrame(0x11, hex("83")), BadAnswerLength);
    row("exception of another function", read, rtuFrame(0x11, hex("8402")), OtherFunction);
    row("fewer registers", read, rtuFrame(0x11, hex("0304022B0000")), BadAnswerLength);
    row("more registers", read, rtuFrame(0x11, hex("0308022B000000640000")), BadAnswerLength);
    row("wrong byte count", read, rtuFrame(0x11, hex("0304022B00000064")), BadAnswerLength);
    row("write repeats another value", writeRequest(), rtuFrame(0x11, hex("0600010004")),
        OtherContent);
}

void TestModbusRtu::passesOver()
{
    QFETCH(Request, request);
    QFETCH(QByteArray, input);
    QFETCH(int, failure);
    RtuFraming framing;
    framing.frame(request);
    framing.add(input);
    Answer answer;
    QVERIFY(!framing.take(&answer));
    COMPARE_STATUS(framing.giveUp().status, failure);
}

void TestModbusRtu::everyDamagedByteIsNoticed()
{
    for (int at = 0; at < good().size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            RtuFraming framing;
            framing.frame(readRequest());
            QByteArray damaged = good();
            damaged[at] = char(damaged.at(at) ^ (1 << bit));
            framing.add(damaged);
            Answer answer;
            QVERIFY(!framing.take(&answer));
            QVERIFY(framing.giveUp().status != Ok);
        }
    }
}

void TestModbusRtu::twoAnswersInOne()
{
    RtuFraming framing;
    framing.frame(readRequest());
    framing.add('\0' + good() + rtuFrame(0x11, hex("0306FFFFFFFFFFFF")));
    Answer answer;
    QVERIFY(framing.take(&answer));
    QCOMPARE(answer.pdu.toHex(), hex(good_pdu).toHex());
    QVERIFY(framing.take(&answer));
    QCOMPARE(answer.pdu.toHex(), hex("0306FFFFFFFFFFFF").toHex());
    COMPARE_STATUS(framing.giveUp().status, NoAnswerInTime); // nothing is left
}

void TestModbusRtu::oldInputIsNoAnswer()
{
    RtuFraming framing;
    framing.frame(readRequest());
    framing.add(good());
    framing.frame(readRequest());
    framing.dropOldInput();
    Answer answer;
    QVERIFY(!framing.take(&answer));
    COMPARE_STATUS(framing.giveUp().status, NoAnswerInTime);
}

void TestModbusRtu::noiseDoesNotFillTheMemory()
{
    RtuFraming framing;
    framing.frame(readRequest());
    const QByteArray noise(4096 - good().size(), '\0');
    framing.add(good());
    framing.add(noise); // the latest 4096 bytes are kept
    Answer answer;
    QVERIFY(framing.take(&answer));
    COMPARE_STATUS(answer.status, Ok);
    framing.reset();
    framing.add(good());
    framing.add(noise + '\0');
    QVERIFY(!framing.take(&answer));
    framing.add(good());
    QVERIFY(framing.take(&answer));
    COMPARE_STATUS(answer.status, Ok);
}

QTEST_GUILESS_MAIN(TestModbusRtu)
#include "tst_modbus_rtu.moc"
