#include "examples/modbus/modbus_pdu.h"
#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QTest>

using namespace modbus;

namespace {

PduRequest request(int function, int start, int count, const char* values = "")
{
    return PduRequest{operationOf(function), start, count, hex(values)};
}

} // namespace

Q_DECLARE_METATYPE(modbus::PduRequest)

class TestModbusPdu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void operations();
    void builds_data();
    void builds();
    void checksAnswers_data();
    void checksAnswers();
    void numbersOutsideOfTheBytes();
};

void TestModbusPdu::operations()
{
    QList<int> functions;
    for (int function = -1; function < 256; ++function) {
        if (const Operation* operation = operationOf(function)) {
            QCOMPARE(operation->function, function);
            functions.append(function);
        }
    }
    QCOMPARE(functions, (QList<int>{1, 2, 3, 4, 5, 6, 15, 16}));
}

void TestModbusPdu::builds_data()
{
    QTest::addColumn<PduRequest>("asked");
    QTest::addColumn<QByteArray>("pdu");
    QTest::addColumn<int>("answer_size");
    const auto row = [](const char* name, const PduRequest& asked, const char* pdu, int size) {
        QTest::newRow(name) << asked << hex(pdu) << size;
    };
    // The examples of the protocol's description.
    row("1: coils 20 to 38", request(1, 0x13, 0x13), "0100130013", 5);
    row("2: inputs 197 to 218", request(2, 0xC4, 0x16), "0200C40016", 5);
    row("3: registers 108 to 110", request(3, 0x6B, 3), "03006B0003", 8);
    row("4: input register 9", request(4, 8, 1), "0400080001", 4);
    row("5: coil 173 on", request(5, 0xAC, 1, "01"), "0500ACFF00", 5);
    row("5: coil 173 off", request(5, 0xAC, 1, "00"), "0500AC0000", 5);
    row("6: register 2", request(6, 1, 1, "0003"), "0600010003", 5);
    row("15: ten coils from 20 on", request(15, 0x13, 10, "CD01"), "0F0013000A02CD01", 5);
    row("16: two registers", request(16, 1, 2, "000A0102"), "100001000204000A0102", 5);
    row("eight bits are one byte", request(1, 0, 8), "0100000008", 3);
    row("nine bits are two bytes", request(1, 0, 9), "0100000009", 4);
    row("most bits", request(2, 0, 2000), "02000007D0", 252);
    row("most registers", request(3, 0, 125), "030000007D", 252);
    row("last address", request(3, 65535, 1), "03FFFF0001", 4);
}

void TestModbusPdu::builds()
{
    QFETCH(PduRequest, asked);
    QFETCH(QByteArray, pdu);
    QCOMPARE(buildPdu(asked).toHex(), pdu.toHex());
    QTEST(answerPduSize(asked), "answer_size");
}

void TestModbusPdu::checksAnswers_data()
{
    QTest::addColumn<PduRequest>("asked");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("status");
    const auto row = [](const char* name, const PduRequest& asked, const char* answer, int status) {
        QTest::newRow(name) << asked << hex(answer) << status;
    };
    const PduRequest read = request(3, 0x6B, 3);
    const PduRequest write = request(6, 1, 1, "0003");
    const PduRequest write_many = request(16, 1, 2, "000A0102");
    row("read", read, "0306022B00000064", Ok);
    row("bits", request(1, 0x13, 10), "0102CD01", Ok);
    row("write of a register", write, "0600010003", Ok);
    row("write of a coil", request(5, 0xAC, 1, "01"), "0500ACFF00", Ok);
    row("write of registers", write_many, "1000010002", Ok);
    row("write of coils", request(15, 0x13, 10, "CD01"), "0F0013000A", Ok);
    row("exception 1", read, "8301", 0x400B0001);
    row("exception 2", read, "8302", 0x400B0002);
    row("exception 11", write, "860B", 0x400B000B);
    row("exception 255", write, "86FF", 0x400B00FF);
    row("exception without a code", read, "83", BadAnswerLength);
    row("exception with more", read, "830200", BadAnswerLength);
    row("exception of another function", read, "8402", OtherFunction);
    row("other function", read, "0406022B00000064", OtherFunction);
    row("nothing", read, "", OtherFunction);
    row("a byte short", read, "0306022B000000", BadAnswerLength);
    row("a byte long", read, "0306022B0000006400", BadAnswerLength);
    row("wrong byte count", read, "0304022B00000064", BadAnswerLength);
    row("fewer registers", read, "0304022B0000", BadAnswerLength);
    row("more registers", read, "0308022B000000640000", BadAnswerLength);
    row("write repeats another value", write, "0600010004", OtherContent);
    row("write repeats another address", write, "0600020003", OtherContent);
    row("write repeats another count", write_many, "1000010001", OtherContent);
    row("write answered short", write, "06000100", BadAnswerLength);
    row("write answered long", write_many, "100001000204", BadAnswerLength);
}

void TestModbusPdu::checksAnswers()
{
    QFETCH(PduRequest, asked);
    QFETCH(QByteArray, answer);
    QFETCH(int, status);
    COMPARE_STATUS(checkAnswerPdu(asked, answer), status);
}

void TestModbusPdu::numbersOutsideOfTheBytes()
{
    const QByteArray bytes = hex("12FF56");
    QCOMPARE(numberAt(bytes, 0), 0x12FF);
    QCOMPARE(numberAt(bytes, 1), 0xFF56);
    QCOMPARE(numberAt(bytes, 2), 0);
    QCOMPARE(numberAt(bytes, 9), 0);
    QCOMPARE(byteAt(bytes, 1), 0xFF);
    QCOMPARE(byteAt(bytes, 3), -1);
}

QTEST_GUILESS_MAIN(TestModbusPdu)
#include "tst_modbus_pdu.moc"
