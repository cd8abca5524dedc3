#include "framework/protocol_basic.h"

#include <QTest>

namespace {

/// What the helpers make while nothing else in the program has been initialised: a driver's own
/// constants may be made of them.
struct EarlyBytes
{
    EarlyBytes()
    {
        ProtocolBasic::addNumber(byte, static_cast<unsigned char>(0xA5), 1);
        ProtocolBasic::addNumber(word, static_cast<unsigned short>(0x12EF), 0, 1);
        ProtocolBasic::addNumber(long_word, 0x89ABCDEFU, 1, 1);
        ProtocolBasic::addNumber(raw, 0x12345678U, 1, 0);
        ProtocolBasic::addArray(array, "\x34\x12\xCD\xAB", 4, 2, 0, 1);
        number = ProtocolBasic::array2Number("7FcdEF", 0, 1);
        text = ProtocolBasic::number2Str(0xBEEF, 6, 16);
        digit = ProtocolBasic::ascii2Hex('e');
    }

    QByteArray byte;
    QByteArray word;
    QByteArray long_word;
    QByteArray raw;
    QByteArray array;
    QByteArray text;
    int number = 0;
    char digit = 0;
};

// The first object of the whole program, whatever the order in which its files are linked.
__attribute__((init_priority(101))) const EarlyBytes early;

} // namespace

/// The helpers in an initialiser at namespace scope.
class TestProtocolBasicBeforeMain : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addNumber();
    void addArray();
    void array2Number();
    void digits();
};

void TestProtocolBasicBeforeMain::addNumber()
{
    QCOMPARE(early.byte, QByteArray("A5"));
    QCOMPARE(early.word, QByteArray("12EF"));
    QCOMPARE(early.long_word, QByteArray("EFCDAB89"));
    QCOMPARE(early.raw, QByteArray("\x78\x56\x34\x12"));
}

void TestProtocolBasicBeforeMain::addArray()
{
    QCOMPARE(early.array, QByteArray("1234ABCD"));
}

void TestProtocolBasicBeforeMain::array2Number()
{
    QCOMPARE(early.number, 0x7FCDEF);
}

void TestProtocolBasicBeforeMain::digits()
{
    QCOMPARE(early.text, QByteArray("00BEEF"));
    QCOMPARE(early.digit, char(14));
}

QTEST_GUILESS_MAIN(TestProtocolBasicBeforeMain)
#include "tst_protocol_basic_before_main.moc"
