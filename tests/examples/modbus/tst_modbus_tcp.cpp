#include "examples/modbus/modbus_status.h"
#include "examples/modbus/modbus_tcp.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QTest>

using namespace modbus;

namespace {

const int unit = 7;
const char* const good_pdu = "030412345678";

/// Two holding registers.
Request readRequest()
{
    Request request;
    request.station = unit;
    request.pdu = PduRequest{operationOf(3), 10, 2, QByteArray()};
    return request;
}

/// The answer to the request number \a transaction.
QByteArray good(int transaction)
{
    return tcpFrame(transaction, unit, hex(good_pdu));
}

/// A framing that waits for the answer to request number 2.
class SecondRequest
{
public:
    SecondRequest()
    {
        framing.frame(readRequest());
        framing.frame(readRequest());
    }

    TcpFraming framing;
};

} // namespace

class TestModbusTcp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void frames();
    void transactionNumbersGoRound();
    void finds_data();
    void finds();
    void passesOver_data();
    void passesOver();
    void answersOfTwoRequestsInOne();
    void oldInputIsNoAnswer_data();
    void oldInputIsNoAnswer();
    void answerThatCameTooEarlyIsStale();
    void foundAtLast();
    void cutAnswersCostNoLaterRequest();
    void lateAnswerInTwoParts();
    void answerHeldByAnother();
    void noiseAsLongAsAHeader();
    void wrongAnswerThatBeganTooEarly();
    void reset();
};

void TestModbusTcp::frames()
{
    TcpFraming framing;
    QCOMPARE(framing.frame(readRequest()).toHex(), QByteArray("00010000000607") + "03000a0002");
    QCOMPARE(framing.answerSize(), good(1).size());
    QCOMPARE(framing.frame(readRequest()).left(2).toHex(), QByteArray("0002"));
    QCOMPARE(tcpFrame(0xABCD, 255, hex("83")).toHex(), QByteArray("abcd00000002ff83"));
}

void TestModbusTcp::transactionNumbersGoRound()
{
    TcpFraming framing;
    for (int number = 1; number < 65536; ++number)
        QCOMPARE(numberAt(framing.frame(readRequest()), 0), number);
    framing.frame(readRequest());
    framing.add(good(0));
    Answer answer;
    QVERIFY(framing.take(&answer));
    COMPARE_STATUS(answer.status, Ok);
    QCOMPARE(numberAt(framing.frame(readRequest()), 0), 1);
}

void TestModbusTcp::finds_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("status");
    const auto row = [](const char* name, const QByteArray& input, int status) {
        QTest::newRow(name) << input << status;
    };
    const auto answer = [](const char* pdu) { return tcpFrame(2, unit, hex(pdu)); };
    row("the answer", good(2), Ok);
    row("an exception", answer("8302"), 0x400B0002);
    row("after a late answer", good(1) + good(2), Ok);
    row("after two late answers", good(1) + good(0) + good(2), Ok);
    row("after a cut late answer", good(1).left(9) + good(2), Ok);
    row("after a header with the length 0", hex("0001000000000103") + good(2), Ok);
    row("after noise", hex("FFFFFFFFFFFFFFFFFF") + good(2), Ok);
    row("after another protocol", good(2).replace(3, 1, "\7") + good(2), Ok);
    row("after noise and another unit",
        hex("FFFFFFFFFFFFFFFFFF") + tcpFrame(2, unit + 1, hex(good_pdu)) + good(2), Ok);
    row("exception after noise", hex("FFFFFFFFFFFFFFFFFF") + answer("8303"), 0x400B0003);
    row("before noise", good(2) + hex("000000"), Ok);
    row("other unit", tcpFrame(2, unit + 1, hex(good_pdu)), OtherStation);
    row("other function", answer("040412345678"), OtherFunction);
    row("fewer registers", answer("03021234"), BadAnswerLength);
    row("more registers", answer("0306123456789ABC"), BadAnswerLength);
    row("wrong byte count", answer("030612345678"), BadAnswerLength);
    row("function alone", answer("03"), BadAnswerLength);
    row("as long as can be", tcpFrame(2, unit, QByteArray(253, '\3')), BadAnswerLength);
    row("the length says less than there is", answer("0304123456") + hex("78"), BadAnswerLength);
    row("exception with more", answer("830200"), BadAnswerLength);
}

void TestModbusTcp::finds()
{
    QFETCH(QByteArray, input);
    QFETCH(int, status);
    for (int portion = 1; portion <= input.size(); ++portion) {
        SecondRequest second;
        Answer answer;
        bool found = false;
        for (int at = 0; at < input.size() && !found; at += portion) {
            second.framing.add(input.mid(at, portion));
            found = second.framing.take(&answer);
        }
        QVERIFY2(found, qPrintable(QString::number(portion)));
        COMPARE_STATUS(answer.status, status);
        if (status == Ok)
            QCOMPARE(answer.pdu.toHex(), hex(good_pdu).toHex());
    }
}

void TestModbusTcp::passesOver_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("failure");
    const auto row = [](const char* name, const QByteArray& input, int failure) {
        QTest::newRow(name) << input << failure;
    };
    row("nothing", QByteArray(), NoAnswerInTime);
    row("one byte", hex("00"), NoAnswerInTime);
    row("late answer cut, the answer is no answer", good(1).left(12) + good(2).left(9),
        NoAnswerInTime);
    row("the number alone", good(2).left(2), BadAnswerLength);
    row("cut in the header", good(2).left(5), BadAnswerLength);
    row("cut after the header", good(2).left(8), BadAnswerLength);
    row("a byte short", good(2).left(good(2).size() - 1), BadAnswerLength);
    row("the length says more than there is", good(2).replace(5, 1, "\x70"), BadAnswerLength);
    row("the length says more than a frame has", good(2).replace(4, 1, "\x70"), BadAnswerLength);
    row("late answer", good(1), NoAnswerInTime);
    row("answer to no request at all", good(0x1234), NoAnswerInTime);
    row("other protocol", good(2).replace(3, 1, "\7"), NotModbus);
    row("noise", hex("FFFFFFFFFFFFFFFFFF"), NoAnswerInTime);
}

void TestModbusTcp::passesOver()
{
    QFETCH(QByteArray, input);
    QFETCH(int, failure);
    SecondRequest second;
    second.framing.add(input);
    Answer answer;
    QVERIFY(!second.framing.take(&answer));
    COMPARE_STATUS(second.framing.giveUp().status, failure);
}

void TestModbusTcp::answersOfTwoRequestsInOne()
{
    TcpFraming framing;
    framing.frame(readRequest());
    framing.add(good(1) + tcpFrame(2, unit, hex("0304AAAAAAAA")));
    Answer answer;
    QVERIFY(framing.take(&answer));
    QCOMPARE(answer.pdu.toHex(), hex(good_pdu).toHex());
    framing.frame(readRequest());
    framing.dropOldInput();
    framing.add(good(2));
    QVERIFY(framing.take(&answer));
    QCOMPARE(answer.pdu.toHex(), hex(good_pdu).toHex());
}

void TestModbusTcp::oldInputIsNoAnswer_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::newRow("with the number of the request") << good(2);
    QTest::newRow("after another") << good(1) + good(2);
    QTest::newRow("after noise") << hex("FFFFFFFFFFFFFFFFFF") + good(2);
}

void TestModbusTcp::oldInputIsNoAnswer()
{
    QFETCH(QByteArray, input);
    SecondRequest second;
    second.framing.add(input);
    second.framing.dropOldInput();
    Answer answer;
    QVERIFY(!second.framing.take(&answer));
}

/// The answer to the second request comes while the first one waits.
void TestModbusTcp::answerThatCameTooEarlyIsStale()
{
    TcpFraming framing;
    Answer answer;
    framing.frame(readRequest());
    framing.add(good(2));
    QVERIFY(!framing.take(&answer));
    framing.frame(readRequest());
    framing.dropOldInput();
    QVERIFY(!framing.take(&answer));
    COMPARE_STATUS(framing.giveUp().status, NoAnswerInTime);
}

/// The answer stands where the rest of another frame should be; that may yet come, until the time
/// is over.
void TestModbusTcp::foundAtLast()
{
    SecondRequest second;
    Answer answer;
    second.framing.add(good(1).replace(5, 1, "\x70") + good(2));
    QVERIFY(!second.framing.take(&answer));
    answer = second.framing.giveUp();
    COMPARE_STATUS(answer.status, Ok);
    QCOMPARE(answer.pdu.toHex(), hex(good_pdu).toHex());
    COMPARE_STATUS(second.framing.giveUp().status, NoAnswerInTime);
}

/// An answer of which only the first bytes come, then the next request with a good one, which
/// comes in portions of any size.
void TestModbusTcp::cutAnswersCostNoLaterRequest()
{
    for (int cut = 0; cut < good(1).size(); ++cut) {
        for (int portion = 1; portion <= good(2).size(); ++portion) {
            TcpFraming framing;
            Answer answer;
            framing.frame(readRequest());
            framing.add(good(1).left(cut));
            QVERIFY(!framing.take(&answer));
            framing.frame(readRequest());
            framing.dropOldInput();
            bool found = false;
            for (int at = 0; at < good(2).size() && !found; at += portion) {
                framing.add(good(2).mid(at, portion));
                found = framing.take(&answer);
            }
            QVERIFY2(found, qPrintable(QString::asprintf("%d, %d", cut, portion)));
            COMPARE_STATUS(answer.status, Ok);
            QCOMPARE(answer.pdu.toHex(), hex(good_pdu).toHex());
        }
    }
}

void TestModbusTcp::lateAnswerInTwoParts()
{
    // The second part has an answer of its own, which would count if the first had been thrown
    // away.
    const QByteArray late = tcpFrame(1, unit, QByteArray("\3\x0E") + good(2));
    for (int cut = 1; cut < 10; ++cut) {
        TcpFraming framing;
        framing.frame(readRequest());
        framing.add(late.left(cut));
        framing.frame(readRequest());
        framing.dropOldInput();
        Answer answer;
        QVERIFY(!framing.take(&answer));
        framing.add(late.mid(cut) + tcpFrame(2, unit, hex("0304AAAAAAAA")));
        QVERIFY2(framing.take(&answer), qPrintable(QString::number(cut)));
        QCOMPARE(answer.pdu.toHex(), QByteArray("0304aaaaaaaa"));
    }
}

/// It counts when nothing better comes, but only once, and not when much has come since.
void TestModbusTcp::answerHeldByAnother()
{
    const QByteArray holding = tcpFrame(1, unit, "\3\x0E" + good(2));
    const QByteArray largest = tcpFrame(1, unit, QByteArray(253, '\3'));
    SecondRequest second;
    Answer answer;
    second.framing.add(holding);
    QVERIFY(!second.framing.take(&answer));
    COMPARE_STATUS(second.framing.giveUp().status, Ok);
    COMPARE_STATUS(second.framing.giveUp().status, NoAnswerInTime);
    second.framing.add(holding + largest + largest);
    QVERIFY(!second.framing.take(&answer));
    COMPARE_STATUS(second.framing.giveUp().status, NoAnswerInTime);
}

/// It is not the beginning of a frame: what comes next is looked at at once.
void TestModbusTcp::noiseAsLongAsAHeader()
{
    SecondRequest second;
    second.framing.add(QByteArray(7, '\x55'));
    second.framing.dropOldInput();
    second.framing.add(tcpFrame(2, unit + 1, hex(good_pdu)));
    Answer answer;
    QVERIFY(second.framing.take(&answer));
    COMPARE_STATUS(answer.status, OtherStation);
}

/// It has the number, the function and the length of the answer.
void TestModbusTcp::wrongAnswerThatBeganTooEarly()
{
    const QByteArray wrong = tcpFrame(2, unit, hex("030512345678"));
    SecondRequest second;
    second.framing.add(wrong.left(3));
    second.framing.dropOldInput();
    second.framing.add(wrong.mid(3));
    Answer answer;
    QVERIFY(second.framing.take(&answer));
    COMPARE_STATUS(answer.status, BadAnswerLength);
}

void TestModbusTcp::reset()
{
    SecondRequest second;
    second.framing.add(good(2).left(9));
    second.framing.reset();
    second.framing.add(good(2).mid(9));
    Answer answer;
    QVERIFY(!second.framing.take(&answer));
}

QTEST_GUILESS_MAIN(TestModbusTcp)
#include "tst_modbus_tcp.moc"
