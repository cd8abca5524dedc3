#include "cloud/service_message.h"
#include "tests/support/log_recorder.h"

#include <QTest>

#include <clocale>
#include <stdexcept>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

std::string bytes(const QString& text)
{
    return text.toLatin1().toStdString();
}

/// "Login: no errorcode" of the line that says so.
QString detailOf(const QString& line)
{
    QString detail = line.mid(latin1("[TOVIK IoT] ").size());
    detail.chop(1);
    return detail.replace(latin1(" Error: "), latin1(": "));
}

std::string nested(int depth, char open, char close)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += open == '{' ? std::string("{\"a\":") : std::string(1, open);
    return text + "1" + std::string(std::string::size_type(depth), close);
}

} // namespace

class TestServiceMessage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestBody_data();
    void requestBody();
    void check_data();
    void check();
    void everyOperationHasItsMessages();
    void replyThatIsNoObjectRaises();
    void membersAreHandedOut();
    void nesting_data();
    void nesting();
    void deepRepliesFailTheParseStep();
};

void TestServiceMessage::requestBody_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no members") << QStringList() << QStringList() << latin1("{}");
    QTest::newRow("ascending keys")
        << QStringList{latin1("token"), latin1("group_id")} << QStringList{latin1("T"), latin1("G")}
        << latin1("{\"group_id\":\"G\",\"token\":\"T\"}");
    QTest::newRow("escapes") << QStringList{latin1("a")}
                             << QStringList{latin1("\"\\/\b\f\n\r\t\x1F")}
                             << latin1("{\"a\":\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u001f\"}");
    QTest::newRow("Latin-1") << QStringList{latin1("a")} << QStringList{latin1("\xE9")}
                             << latin1("{\"a\":\"\xE9\"}");
    QTest::newRow("outside Latin-1")
        << QStringList{latin1("a")} << QStringList{QString(QChar(0x20AC))}
        << latin1("{\"a\":\"?\"}");
}

void TestServiceMessage::requestBody()
{
    QFETCH(QStringList, names);
    QFETCH(QStringList, texts);
    picojson::object members;
    for (int i = 0; i < names.size(); ++i)
        members[names.at(i).toStdString()] = service::member(texts.at(i));
    QTEST(service::requestBody(members), "expected");
}

void TestServiceMessage::check_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("reason");
    using service::Outcome;
    const QString parsing = latin1("[TOVIK IoT] Login Error: parsing JSON failed!");
    const QString absent = latin1("[TOVIK IoT] Login Error: no errorcode!");
    const QString invalid = latin1("[TOVIK IoT] Login Error: errorcode invalid!");
    QTest::newRow("success") << latin1("{\"errorcode\":0}") << 0 << QString() << int(Outcome::fine);
    QTest::newRow("a fraction counts as zero")
        << latin1("{\"errorcode\":0.9}") << 0 << QString() << int(Outcome::fine);
    QTest::newRow("text after the value is ignored")
        << latin1("{\"errorcode\":0} and more") << 0 << QString() << int(Outcome::fine);
    QTest::newRow("the last of two keys counts")
        << latin1("{\"errorcode\":5,\"errorcode\":0}") << 0 << QString() << int(Outcome::fine);
    QTest::newRow("empty") << QString() << 256 << parsing << int(Outcome::not_json);
    QTest::newRow("not JSON") << latin1("<html>") << 256 << parsing << int(Outcome::not_json);
    QTest::newRow("cut") << latin1("{\"errorcode\":0") << 256 << parsing << int(Outcome::not_json);
    QTest::newRow("number beyond a double")
        << latin1("{\"errorcode\":1e999}") << 256 << parsing << int(Outcome::not_json);
    QTest::newRow("number beyond a double elsewhere")
        << latin1("{\"errorcode\":0,\"x\":[-1e999]}") << 256 << parsing << int(Outcome::not_json);
    QTest::newRow("no errorcode") << latin1("{}") << 256 << absent << int(Outcome::no_errorcode);
    QTest::newRow("null errorcode")
        << latin1("{\"errorcode\":null}") << 256 << absent << int(Outcome::no_errorcode);
    QTest::newRow("text errorcode")
        << latin1("{\"errorcode\":\"0\"}") << 256 << invalid << int(Outcome::errorcode_invalid);
    QTest::newRow("boolean errorcode")
        << latin1("{\"errorcode\":false}") << 256 << invalid << int(Outcome::errorcode_invalid);
    QTest::newRow("array errorcode")
        << latin1("{\"errorcode\":[0]}") << 256 << invalid << int(Outcome::errorcode_invalid);
    QTest::newRow("the service's code")
        << latin1("{\"errorcode\":3}") << 3 << latin1("[TOVIK IoT] Login Error:  3")
        << int(Outcome::refused);
    QTest::newRow("negative code is cut toward zero")
        << latin1("{\"errorcode\":-1.7}") << -1 << latin1("[TOVIK IoT] Login Error:  -1")
        << int(Outcome::refused);
    QTest::newRow("code beyond 32 bits saturates")
        << latin1("{\"errorcode\":3e10}") << 2147483647
        << latin1("[TOVIK IoT] Login Error:  2147483647") << int(Outcome::refused);
}

void TestServiceMessage::check()
{
    QFETCH(QString, reply);
    QFETCH(int, result);
    QFETCH(QString, line);
    QFETCH(int, reason);
    LogRecorder log;
    picojson::object members;
    const service::Outcome outcome = service::checkReply(bytes(reply), service::login, &members);
    QCOMPARE(outcome.result, result);
    QCOMPARE(int(outcome.reason), reason);
    QCOMPARE(outcome.detail, detailOf(result == 256 ? line : QString()));
    QCOMPARE(log.lines(), line.isEmpty() ? QStringList() : QStringList(line));
}

void TestServiceMessage::everyOperationHasItsMessages()
{
    struct Operation
    {
        const service::Operation* operation;
        const char* word;
        const char* code_word;
    };
    const Operation operations[] = {
        {&service::login, "Login", "Login"},
        {&service::group_list, "GetGroupList", "GetGroupList"},
        {&service::dataitem_list, "GetDataitemList", "GetDataitemList"},
        {&service::read, "ReadDataitemValue", "ReadDataitemValue"},
        {&service::write, "WriteDataitemValue", "SetDataitemValue"},
    };
    for (const Operation& operation : operations) {
        const QString start = latin1("[TOVIK IoT] %1 Error: ").arg(latin1(operation.word));
        const QString code = latin1("[TOVIK IoT] %1 Error: ").arg(latin1(operation.code_word));
        LogRecorder log;
        picojson::object members;
        service::checkReply(std::string(), *operation.operation, &members);
        service::checkReply(std::string("{}"), *operation.operation, &members);
        service::checkReply(std::string("{\"errorcode\":{}}"), *operation.operation, &members);
        service::checkReply(std::string("{\"errorcode\":7}"), *operation.operation, &members);
        QCOMPARE(
            log.lines(),
            (QStringList{start + latin1("parsing JSON failed!"), start + latin1("no errorcode!"),
                         start + latin1("errorcode invalid!"), code + latin1(" 7")}));
    }
}

void TestServiceMessage::replyThatIsNoObjectRaises()
{
    const char* const replies[] = {"[]", "5", "\"text\"", "null", "true"};
    for (const char* reply : replies) {
        picojson::object members;
        try {
            service::checkReply(reply, service::login, &members);
            QFAIL(reply);
        } catch (const std::runtime_error& error) {
            QCOMPARE(error.what(),
                     "\"type mismatch! call is<type>() before get<type>()\" && is<object>()");
        }
    }
}

void TestServiceMessage::membersAreHandedOut()
{
    picojson::object members;
    QCOMPARE(service::checkReply(std::string("{\"errorcode\":0,\"value\":\"\xE9\"}"), service::read,
                                 &members)
                 .result,
             0);
    QCOMPARE(service::find(members, "value").get<std::string>(), std::string("\xE9"));
    QVERIFY(service::find(members, "missing").is<picojson::null>());
}

void TestServiceMessage::nesting_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("too_deep");
    auto row = [](const char* name, const std::string& json, bool too_deep) {
        QTest::newRow(name) << QByteArray::fromStdString(json) << too_deep;
    };
    row("100 arrays", nested(100, '[', ']'), false);
    row("101 arrays", nested(101, '[', ']'), true);
    row("100 objects", nested(100, '{', '}'), false);
    row("101 objects", nested(101, '{', '}'), true);
    row("texts at the end of many arrays",
        "[" + QByteArray("[\"a\"],").repeated(200).toStdString() + "[]]", false);
    row("50,000 objects", nested(50000, '{', '}'), true);
    row("101 unclosed", std::string(101, '['), true);
    row("side by side", "[" + std::string(200, ' ') + "[],[],{},[]]", false);
    row("brackets in a text", "[\"" + std::string(200, '[') + "\"]", false);
    row("escaped quote in a text", "[\"\\\"" + std::string(200, '[') + "\"]", false);
    row("escaped backslash ends the text", "[\"\\\\\"," + std::string(100, '['), true);
    row("deep text after the first value", "{} " + std::string(200, '['), false);
    row("deep text after a number", "1" + std::string(200, '['), false);
    row("deep text after a text", "\"[\"" + std::string(200, '['), false);
    row("blanks in front", " \t\r\n" + std::string(101, '['), true);
    row("empty", "", false);
    row("only blanks", "  ", false);
    row("closing bracket", "]" + std::string(200, '['), false);
}

void TestServiceMessage::nesting()
{
    QFETCH(QByteArray, json);
    QTEST(service::nestsTooDeep(json.toStdString()), "too_deep");
}

void TestServiceMessage::deepRepliesFailTheParseStep()
{
    LogRecorder log;
    picojson::object members;
    const QString allowed = latin1("{\"errorcode\":0,\"x\":") +
                            QString::fromStdString(nested(99, '[', ']')) + latin1("}");
    QCOMPARE(service::checkReply(bytes(allowed), service::login, &members).result, 0);
    QVERIFY(log.lines().isEmpty());
    const QString deep = latin1("{\"errorcode\":0,\"x\":") +
                         QString::fromStdString(nested(50000, '{', '}')) + latin1("}");
    QCOMPARE(service::checkReply(bytes(deep), service::login, &members).result, 256);
    QCOMPARE(log.take(), QStringList{latin1("[TOVIK IoT] Login Error: parsing JSON failed!")});
}

QTEST_APPLESS_MAIN(TestServiceMessage)
#include "tst_service_message.moc"
