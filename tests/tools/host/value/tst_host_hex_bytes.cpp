#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/host_value.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::value;

class TestHostHexBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data();
    void reads();
    void refuses_data();
    void refuses();
};

void TestHostHexBytes::reads_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("a byte each") << QStringList{QStringLiteral("01"), QStringLiteral("fF")}
                                 << QByteArray("\x01\xff");
    QTest::newRow("in one") << QStringList{QStringLiteral("0103C5cd")}
                            << QByteArray("\x01\x03\xc5\xcd");
    QTest::newRow("in one with blanks")
        << QStringList{QStringLiteral(" 01 0300\tC5 ")} << QByteArray("\x01\x03\0\xc5", 4);
}

void TestHostHexBytes::reads()
{
    QFETCH(QStringList, texts);
    QFETCH(QByteArray, bytes);
    QCOMPARE(parseHexBytes(texts), bytes);
}

void TestHostHexBytes::refuses_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QString>("problem");
    QTest::newRow("nothing") << QStringList() << QStringLiteral("there is nothing to send");
    QTest::newRow("blanks") << QStringList{QStringLiteral("  ")}
                            << QStringLiteral("there is nothing to send");
    QTest::newRow("odd number of digits") << QStringList{QStringLiteral("01"), QStringLiteral("3")}
                                          << QStringLiteral("\"3\" has an odd number of digits");
    QTest::newRow("no digits") << QStringList{QStringLiteral("0x01")}
                               << QStringLiteral("\"0x01\" is not hexadecimal");
    QTest::newRow("letter that looks like one")
        << QStringList{QStringLiteral("0O")} << QStringLiteral("\"0O\" is not hexadecimal");
}

void TestHostHexBytes::refuses()
{
    QFETCH(QStringList, texts);
    QFETCH(QString, problem);
    try {
        parseHexBytes(texts);
    } catch (const terminal::UsageError& error) {
        QVERIFY2(error.message().startsWith(problem), error.what());
        return;
    }
    QFAIL("no error");
}

QTEST_APPLESS_MAIN(TestHostHexBytes)
#include "tst_host_hex_bytes.moc"
