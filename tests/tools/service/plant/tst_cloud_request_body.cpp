#include "tools/service/plant/request_body.h"

#include <QTest>

using namespace tovik_service::plant;

class TestCloudRequestBody : public QObject
{
    Q_OBJECT

private slots:
    void acceptsExactBodies();
    void saysWhatIsWrong_data();
    void saysWhatIsWrong();
    void checksTheContentType_data();
    void checksTheContentType();
    void hidesSecrets();
    void shortensLongTexts();
    void survivesAnyBytes();
};

void TestCloudRequestBody::acceptsExactBodies()
{
    const auto good = [](ApiPath path, const char* text) {
        return bodyProblem(path, parseBody(text)).empty();
    };
    QVERIFY(good(ApiPath::Login, R"({"email":"e","password":"p","project":"x"})"));
    QVERIFY(good(ApiPath::Groups, R"({"token":"t"})"));
    QVERIFY(good(ApiPath::Items, R"({"group_id":"g","token":"t"})"));
    QVERIFY(good(ApiPath::Value, R"({"dataitem_id":"i","token":"t"})"));
    QVERIFY(good(ApiPath::Write, R"({"dataitem_id":"i","token":"t","value":true})"));
}

void TestCloudRequestBody::saysWhatIsWrong_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("problem");
    const auto row = [](const char* title, const char* body, const char* problem) {
        QTest::newRow(title) << QByteArray(body) << QByteArray(problem);
    };
    row("empty", "", "no valid JSON");
    row("no JSON", "token=1", "no valid JSON in UTF-8, see byte 2 of 7");
    row("Latin-1", "{\"token\":\"\xfc\"}", "no valid JSON in UTF-8, see byte 11");
    row("array", "[1]", "no JSON object but array");
    row("missing member", R"({"token":"t","dataitem_id":"i"})", "member \"value\" is missing");
    row("additional member", R"({"dataitem_id":"i","token":"t","value":1,"x":2})",
        "member \"x\" does not belong there");
    row("number for a token", R"({"dataitem_id":"i","token":5,"value":1})",
        "member \"token\" has the wrong kind, number");
    row("object for a value", R"({"dataitem_id":"i","token":"t","value":{}})",
        "member \"value\" has the wrong kind, object");
    row("null for a value", R"({"dataitem_id":"i","token":"t","value":null})",
        "member \"value\" has the wrong kind, null");
    row("member twice", R"({"dataitem_id":"i","token":"t","token":"u","value":1})",
        "member \"token\" comes twice");
}

void TestCloudRequestBody::saysWhatIsWrong()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, problem);
    const std::string found = bodyProblem(ApiPath::Write, parseBody(body.toStdString()));
    QVERIFY2(QByteArray::fromStdString(found).contains(problem), found.c_str());
}

void TestCloudRequestBody::checksTheContentType_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<bool>("good");
    QTest::newRow("plain") << QByteArray("application/json") << true;
    QTest::newRow("with a character set") << QByteArray("Application/JSON ; charset=utf-8") << true;
    QTest::newRow("missing") << QByteArray() << false;
    QTest::newRow("a form") << QByteArray("application/x-www-form-urlencoded") << false;
    QTest::newRow("a longer name") << QByteArray("application/jsonp") << false;
}

void TestCloudRequestBody::checksTheContentType()
{
    QFETCH(QByteArray, type);
    QFETCH(bool, good);
    QCOMPARE(contentTypeProblem(type.toStdString()).empty(), good);
}

void TestCloudRequestBody::hidesSecrets()
{
    const auto masked = [](const char* body) {
        return QByteArray::fromStdString(toText(maskedBody(parseBody(body))));
    };
    QCOMPARE(masked(R"({"email":"e","password":"secret"})"),
             QByteArray(R"({"email":"e","password":"***"})"));
    QCOMPARE(masked(R"({"pasword":"secret"})"), QByteArray(R"({"pasword":"***"})"));
    QCOMPARE(masked(R"({"token":"0123456789abcdef"})"), QByteArray(R"({"token":"012345..."})"));
    QCOMPARE(masked(R"({"token":"0123"})"), QByteArray(R"({"token":"***"})"));
    QCOMPARE(masked(R"({"value":{"password":"secret"}})"), QByteArray(R"({"value":"***"})"));
    QCOMPARE(masked(R"({"token":["secret"]})"), QByteArray(R"({"token":"***"})"));
    QVERIFY(!masked(R"({"password":"secret")").contains("secret"));
    const std::string problem = parseBody(R"({"password":"secret"x)").problem;
    QVERIFY(problem.find("secret") == std::string::npos);
}

void TestCloudRequestBody::shortensLongTexts()
{
    // The 500th byte is the second one of its character.
    const std::string text = "x" + QByteArray("ü").repeated(1000).toStdString();
    const Json masked = maskedBody(parseBody(Json{{"value", text}, {text, 1}}.dump()));
    QCOMPARE(masked.at("value").get<std::string>(), text.substr(0, 499) + "... (2001 bytes)");
    QCOMPARE(shownText(text), text.substr(0, 499) + "... (2001 bytes)");
    QCOMPARE(shownText(text.substr(0, 499)), text.substr(0, 499));
    QCOMPARE(shownText(std::string(501, '\x80')), std::string("... (501 bytes)"));
    QCOMPARE(masked.size(), std::size_t(2));
    QVERIFY(masked.dump(-1, ' ', false, Json::error_handler_t::replace).size() < 700);
}

void TestCloudRequestBody::survivesAnyBytes()
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text = "{\"token\":\"" + std::string(1, static_cast<char>(byte)) + "\"}";
        const RequestBody body = parseBody(text);
        QVERIFY(body.problem.empty() == body.object.is_object());
        toText(maskedBody(body));
    }
}

QTEST_APPLESS_MAIN(TestCloudRequestBody)
#include "tst_cloud_request_body.moc"
