#include "compat/text.h"

#include <QTest>

namespace {

std::string std8(const QByteArray& bytes)
{
    return std::string(bytes.constData(), size_t(bytes.size()));
}

QString utf16(const QList<ushort>& units)
{
    QString text;
    for (const ushort unit : units)
        text.append(QChar(unit));
    return text;
}

QByteArray allBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes.append(char(i));
    return bytes;
}

QString allLatin1()
{
    QString text;
    for (int i = 0; i < 256; ++i)
        text.append(QChar(i));
    return text;
}

/// Bytes and the Latin-1 text that they are; NUL is not among them.
void addLatin1Rows()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray("") << QString();
    QTest::newRow("ASCII") << QByteArray("a Z~") << utf16({'a', ' ', 'Z', '~'});
    QTest::newRow("quote, backslash, slash")
        << QByteArray("\"\\/'") << utf16({0x22, 0x5c, 0x2f, 0x27});
    QTest::newRow("control characters")
        << QByteArray("\x01\t\n\r\x1b\x7f") << utf16({1, 9, 10, 13, 27, 127});
    QTest::newRow("upper half's ends")
        << QByteArray("\x80\x9f\xa0\xff") << utf16({0x80, 0x9f, 0xa0, 0xff});
    QTest::newRow("bytes of UTF-8 stay single") << QByteArray("\xc3\xa4") << utf16({0xc3, 0xa4});
    QTest::newRow("all but NUL") << allBytes().mid(1) << allLatin1().mid(1);
}

/// Text with characters that Latin-1 does not have, and what becomes of it.
void addBeyondLatin1Rows()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("first beyond") << utf16({0x100}) << QByteArray("?");
    QTest::newRow("euro between letters") << utf16({'a', 0x20ac, 'b'}) << QByteArray("a?b");
    QTest::newRow("Chinese") << utf16({0x6f22, 0x5b57}) << QByteArray("??");
    QTest::newRow("beyond the basic plane") << utf16({0xd83d, 0xde00}) << QByteArray("??");
    QTest::newRow("byte order mark") << utf16({0xfeff}) << QByteArray("?");
}

} // namespace

class TestText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void latin1BothWays_data() { addLatin1Rows(); }
    void latin1BothWays();
    void hostBytesBothWays_data() { addLatin1Rows(); }
    void hostBytesBothWays();
    void charactersBeyondLatin1_data() { addBeyondLatin1Rows(); }
    void charactersBeyondLatin1();
    void nulIsKept();
    void nulEndsTheText_data();
    void nulEndsTheText();
    void utf8_data();
    void utf8();
};

void TestText::latin1BothWays()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(text::fromLatin1(std8(bytes)), text);
    QCOMPARE(text::toLatin1(text), std8(bytes));
    QCOMPARE(text::fromLatin1UpToNul(bytes), text);
}

void TestText::hostBytesBothWays()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(text::toHostBytes(text), bytes);
    QCOMPARE(text::fromHostBytes(bytes), text);
}

void TestText::charactersBeyondLatin1()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(text::toLatin1(text), std8(bytes));
    QCOMPARE(text::toHostBytes(text), bytes);
}

void TestText::nulIsKept()
{
    const QByteArray bytes("a\0b\0", 4);
    const QString text = utf16({'a', 0, 'b', 0});
    QCOMPARE(text::fromLatin1(std8(bytes)), text);
    QCOMPARE(text::fromUtf8(std8(bytes)), text);
    QCOMPARE(text::toLatin1(text), std8(bytes));
    QCOMPARE(text::toHostBytes(text), bytes);
}

void TestText::nulEndsTheText_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("padded") << QByteArray("ab\0\0\0", 5) << utf16({'a', 'b'});
    QTest::newRow("NUL first") << QByteArray("\0ab", 3) << QString();
    QTest::newRow("more after it") << QByteArray("\xe4\0\xe4", 3) << utf16({0xe4});
    QTest::newRow("NUL alone") << QByteArray("\0", 1) << QString();
    QTest::newRow("no NUL") << QByteArray("ab") << utf16({'a', 'b'});
    QTest::newRow("nothing") << QByteArray() << QString();
}

void TestText::nulEndsTheText()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(text::fromLatin1UpToNul(bytes), text);
    QCOMPARE(text::fromHostBytes(bytes), text);
}

void TestText::utf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray("") << QString();
    QTest::newRow("ASCII with quote, backslash, slash")
        << QByteArray("a\"\\/") << utf16({'a', 0x22, 0x5c, 0x2f});
    QTest::newRow("control characters") << QByteArray("\x01\x1f\x7f") << utf16({1, 31, 127});
    QTest::newRow("two bytes") << QByteArray("\xc2\x80\xc3\xbf") << utf16({0x80, 0xff});
    QTest::newRow("three bytes") << QByteArray("\xe2\x82\xac") << utf16({0x20ac});
    QTest::newRow("four bytes") << QByteArray("\xf0\x9f\x98\x80") << utf16({0xd83d, 0xde00});
    // What is no UTF-8 is replaced, and what stands around it is kept.
    QTest::newRow("lone continuation") << QByteArray("a\x80z") << utf16({'a', 0xfffd, 'z'});
    QTest::newRow("Latin-1 letter") << QByteArray("a\xe4z") << utf16({'a', 0xfffd, 'z'});
    QTest::newRow("never valid") << QByteArray("a\xffz") << utf16({'a', 0xfffd, 'z'});
}

void TestText::utf8()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(text::fromUtf8(std8(bytes)), text);
}

QTEST_GUILESS_MAIN(TestText)
#include "tst_text.moc"
