#include "cloud/trace/secrets.h"

#include <QTest>

/// Nothing of a password or a token is left, whatever the body is.
class TestSecrets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void members_data();
    void members();
    void knownOnes_data();
    void knownOnes();
};

void TestSecrets::members_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("shown");
    QTest::addColumn<QList<QByteArray>>("values");
    const auto row = [](const char* name, const char* body, const char* shown,
                        const QList<QByteArray>& values) {
        QTest::newRow(name) << QByteArray(body) << QByteArray(shown) << values;
    };
    row("none", "{\"errorcode\":0}", "{\"errorcode\":0}", {});
    row("empty", "", "", {});
    row("login", "{\"email\":\"e\",\"password\":\"s3cret\",\"project\":\"p\"}",
        "{\"email\":\"e\",\"password\":\"***\",\"project\":\"p\"}", {"s3cret"});
    row("token", "{\"dataitem_id\":\"A\",\"token\":\"T\"}",
        "{\"dataitem_id\":\"A\",\"token\":\"***\"}", {"T"});
    row("both, the second one first", "{\"token\":\"T\",\"password\":\"P\"}",
        "{\"token\":\"***\",\"password\":\"***\"}", {"T", "P"});
    row("with spaces", "{ \"token\" :\n\t\"T\" }", "{ \"token\" :\n\t\"***\" }", {"T"});
    row("with an escaped quotation mark", "{\"password\":\"a\\\"b\\\\\",\"x\":1}",
        "{\"password\":\"***\",\"x\":1}", {"a\\\"b\\\\"});
    row("that is no text", "{\"token\":12345,\"x\":1}", "{\"token\":***,\"x\":1}", {"12345"});
    row("cut off", "{\"errorcode\":0,\"token\":\"abcde", "{\"errorcode\":0,\"token\":\"***",
        {"abcde"});
    row("with a carriage return", "{\"token\"\r\n:\r\n\"T\"}", "{\"token\"\r\n:\r\n\"***\"}",
        {"T"});
    row("named by a value before", "{\"a\":\"token\",\"token\":\"T\"}",
        "{\"a\":\"token\",\"token\":\"***\"}", {"T"});
    row("that is no text, cut off", "{\"token\":12345", "{\"token\":***", {"12345"});
    row("cut off after the name", "{\"token\" ", "{\"token\" ", {});
    row("cut off before the value", "{\"token\": ", "{\"token\": ", {});
    row("cut off after a quotation mark", "{\"token\":\"", "{\"token\":\"", {});
    row("cut off after a backslash", "{\"token\":\"abc\\", "{\"token\":\"***", {"abc\\"});
    row("name alone", "{\"a\":\"token\",\"b\":\"password\"}",
        "{\"a\":\"token\",\"b\":\"password\"}", {});
    row("name without a value", "\"token\"", "\"token\"", {});
    row("nothing in front", "\"token\":\"T\"", "\"token\":\"***\"", {"T"});
    row("right after another quotation mark", "\"\"token\":\"T\"", "\"\"token\":\"***\"", {"T"});
    row("one after a name alone", "{\"password\",\"token\":\"T\"}",
        "{\"password\",\"token\":\"***\"}", {"T"});
    row("no JSON around it", "<html>\"token\":\"T\"</html>", "<html>\"token\":\"***\"</html>",
        {"T"});
}

void TestSecrets::members()
{
    QFETCH(QByteArray, body);
    QTEST(secrets::blotted(body), "shown");
    QTEST(secrets::in(body), "values");
}

void TestSecrets::knownOnes_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("known");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("anywhere") << QByteArray("no such token: abc, abc") << QByteArray("abc")
                              << QByteArray("no such token: ***, ***");
    // Else every 1 of a reply would go.
    QTest::newRow("but for very short ones")
        << QByteArray("{\"errorcode\":1}") << QByteArray("1") << QByteArray("{\"errorcode\":1}");
}

void TestSecrets::knownOnes()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, known);
    QTEST(secrets::blotted(body, {known}), "shown");
}

QTEST_APPLESS_MAIN(TestSecrets)
#include "tst_secrets.moc"
