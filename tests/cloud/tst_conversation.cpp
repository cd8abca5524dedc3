#include "cloud/conversation.h"
#include "cloud/post.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"

#include <QTest>

#include <stdexcept>

#include <memory>

using service::Outcome;

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const char token[] = "T";
const char two_groups[] = "{\"errorcode\":0,\"Number\":3,\"groups\":[{\"group_id\":\"g1\",\"name\":"
                          "\"One\"},{\"name\":\"without id\"},{\"group_id\":\"g2\",\"name\":"
                          "\"Two\"}]}";
const char two_items[] =
    "{\"errorcode\":0,\"Number\":2,\"dataitems\":[{\"name\":\"a\",\"dataitem_id"
    "\":\"A\"},{\"name\":\"b\",\"dataitem_id\":\"B\"}]}";

} // namespace

/// How each operation ends, and the reason that it gives.
class TestConversation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { log_.reset(); }
    void reasons_data();
    void reasons();
    void noAnswer_data();
    void noAnswer();
    void aFailedTransportWithAGoodReplySucceeds();
    void loginHandsOutTheToken();
    void addressIsAskedBeforeEveryRequest();
    void progressOfACatalogue_data();
    void progressOfACatalogue();
    void elementThatIsNoGroup();
    void groupsBeforeAFailureStay();
    void valueOfAnotherKind_data();
    void valueOfAnotherKind();
    void writeInTwoHalves();

private:
    Outcome run(const QString& operation);

    std::unique_ptr<ScriptedService> service_;
    PropertyTovikIot property_;
    PropertyTovikIotDataItem item_;
    std::unique_ptr<LogRecorder> log_;
};

void TestConversation::init()
{
    service_.reset(new ScriptedService);
    property_.host = service_->url();
    item_ = PropertyTovikIotDataItem();
    item_.dataitem_id = latin1("A");
    log_.reset(new LogRecorder);
}

Outcome TestConversation::run(const QString& operation)
{
    const Conversation conversation(&property_);
    QString new_token;
    QList<PropertyTovikIotGroup> groups;
    PropertyTovikIotGroup group;
    const QString old_token = latin1(token);
    if (operation == latin1("login"))
        return conversation.login(QString(), QString(), QString(), &new_token);
    if (operation == latin1("groups"))
        return conversation.groupList(old_token, &groups);
    if (operation == latin1("items"))
        return conversation.dataitemList(old_token, &group);
    if (operation == latin1("read"))
        return conversation.readValue(old_token, &item_);
    return conversation.writeValue(old_token, item_, 1);
}

void TestConversation::reasons_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("reason");
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QStringList>("log");
    auto row = [](const char* operation, const char* name, const char* reply, int result,
                  Outcome::Reason reason, const char* detail, const QStringList& log) {
        QTest::addRow("%s: %s", operation, name) << latin1(operation) << QByteArray(reply) << result
                                                 << int(reason) << latin1(detail) << log;
    };
    auto line = [](const char* text) { return QStringList(latin1("[TOVIK IoT] ") + latin1(text)); };
    row("login", "fine", "{\"errorcode\":0,\"token\":\"T\"}", 0, Outcome::fine, "", {});
    row("login", "no token", "{\"errorcode\":0}", 256, Outcome::member_missing, "Login: no token",
        line("Login Error: no token!"));
    row("login", "number for a token", "{\"errorcode\":0,\"token\":5}", 256,
        Outcome::member_invalid, "Login: token invalid", line("Login Error: token invalid!"));
    row("login", "empty token", "{\"errorcode\":0,\"token\":\"\"}", 256, Outcome::token_empty,
        "the token is empty", {});
    row("login", "refused", "{\"errorcode\":1}", 1, Outcome::refused, "", line("Login Error:  1"));
    row("groups", "no group", "{\"errorcode\":0,\"Number\":0,\"groups\":[]}", 0, Outcome::fine, "",
        line("Warning: no group!"));
    row("groups", "no list", "{\"errorcode\":0,\"Number\":1}", 256, Outcome::member_missing,
        "GetGroupList: no Number/groups", line("GetGroupList Error: no Number/groups!"));
    row("items", "text for a number", "{\"errorcode\":0,\"Number\":\"1\",\"dataitems\":[]}", 256,
        Outcome::member_invalid, "GetDataitemList: dataitem number invalid",
        line("GetDataitemList Error: dataitem number invalid!"));
    row("items", "object for a list", "{\"errorcode\":0,\"Number\":1,\"dataitems\":{}}", 256,
        Outcome::member_invalid, "GetDataitemList Respond: dataitems is not array",
        line("GetDataitemList Respond Error: dataitems is not array!"));
    row("read", "fine", "{\"errorcode\":0,\"value\":5}", 0, Outcome::fine, "", {});
    row("read", "no value", "{\"errorcode\":0}", 256, Outcome::member_missing,
        "ReadDataitemValue: no value", line("ReadDataitemValue Error: no value!"));
    row("read", "no JSON", "{", 256, Outcome::not_json, "ReadDataitemValue: parsing JSON failed",
        line("ReadDataitemValue Error: parsing JSON failed!"));
    row("write", "fine", "{\"errorcode\":0}", 0, Outcome::fine, "", {});
    row("write", "no errorcode", "{}", 256, Outcome::no_errorcode,
        "WriteDataitemValue: no errorcode", line("WriteDataitemValue Error: no errorcode!"));
    row("write", "refused", "{\"errorcode\":7}", 7, Outcome::refused, "",
        line("SetDataitemValue Error:  7"));
}

void TestConversation::reasons()
{
    QFETCH(QString, operation);
    QFETCH(QByteArray, reply);
    service_->queue(reply);
    const Outcome outcome = run(operation);
    QTEST(outcome.result, "result");
    QTEST(int(outcome.reason), "reason");
    QTEST(outcome.detail, "detail");
    QTEST(log_->take(), "log");
}

void TestConversation::noAnswer_data()
{
    QTest::addColumn<QString>("operation");
    for (const char* operation : {"login", "groups", "items", "read", "write"})
        QTest::newRow(operation) << latin1(operation);
}

/// The reason is the network's, whatever the body of the error page lacks.
void TestConversation::noAnswer()
{
    QFETCH(QString, operation);
    service_->queue(ScriptedReply::status(500, "{}"));
    const Outcome outcome = run(operation);
    QCOMPARE(outcome.result, 256);
    QCOMPARE(int(outcome.reason), int(Outcome::no_answer));
    QVERIFY2(outcome.detail.contains(latin1("server replied")), qPrintable(outcome.detail));
    const QStringList log = log_->take();
    QCOMPARE(log.size(), 2);
    QVERIFY(log.first().startsWith(latin1("[TOVIK IoT] Post Request Error: ")));
    QVERIFY(log.last().endsWith(latin1("no errorcode!")));
}

void TestConversation::aFailedTransportWithAGoodReplySucceeds()
{
    service_->queue(ScriptedReply::status(500, "{\"errorcode\":0,\"value\":5}"));
    const Outcome outcome = run(latin1("read"));
    QCOMPARE(outcome.result, 0);
    QCOMPARE(int(outcome.reason), int(Outcome::fine));
    QCOMPARE(log_->take().size(), 1);
}

void TestConversation::loginHandsOutTheToken()
{
    const Conversation conversation(&property_);
    QString handed_out = latin1("old");
    service_->queue("{\"errorcode\":4}");
    conversation.login(latin1("P"), latin1("E"), latin1("W"), &handed_out);
    QCOMPARE(handed_out, latin1("old"));
    service_->queue("{\"errorcode\":0,\"token\":\"T\xE9\"}");
    conversation.login(latin1("P"), latin1("E"), latin1("W"), &handed_out);
    QCOMPARE(handed_out, latin1("T\xE9"));
    QCOMPARE(service_->bodies().last(),
             QByteArray("{\"email\":\"E\",\"password\":\"W\",\"project\":\"P\"}"));
}

void TestConversation::addressIsAskedBeforeEveryRequest()
{
    const Conversation conversation(&property_);
    property_.host = service_->url() + latin1("/behind");
    service_->queue("{\"errorcode\":0,\"value\":5}");
    conversation.readValue(latin1(token), &item_);
    QCOMPARE(service_->paths(), QList<QByteArray>{"/behind/qlix_api/imonitor/dataitem/value"});
}

void TestConversation::progressOfACatalogue_data()
{
    QTest::addColumn<QByteArray>("groups");
    QTest::addColumn<QStringList>("steps");
    QTest::newRow("two groups and one that is dropped")
        << QByteArray(two_groups) << QStringList{latin1("2/0/0"), latin1("2/1/2"), latin1("2/2/4")};
    QTest::newRow("no group") << QByteArray("{\"errorcode\":0,\"Number\":0,\"groups\":[]}")
                              << QStringList{latin1("0/0/0")};
    QTest::newRow("a failure") << QByteArray("{\"errorcode\":4}") << QStringList();
}

void TestConversation::progressOfACatalogue()
{
    QFETCH(QByteArray, groups);
    service_->setHandler([groups](const ScriptedRequest& request) {
        return ScriptedReply::json(request.path.endsWith("list") ? groups : QByteArray(two_items));
    });
    QList<PropertyTovikIotGroup> loaded;
    QStringList steps; // "known/loaded/items"
    const auto note = [&steps](const Conversation::Progress& progress) {
        steps << latin1("%1/%2/%3")
                     .arg(progress.groups_known)
                     .arg(progress.groups_loaded)
                     .arg(progress.items);
    };
    Conversation(&property_).groupList(latin1(token), &loaded, note);
    QTEST(steps, "steps");
    QCOMPARE(loaded.size(), qMax(0, steps.size() - 1));
}

/// It is not counted, and raises its error when its turn has come.
void TestConversation::elementThatIsNoGroup()
{
    service_->queue("{\"errorcode\":0,\"Number\":2,\"groups\":["
                    "{\"group_id\":\"g\",\"name\":\"One\"},5]}");
    service_->queue(two_items);
    QList<PropertyTovikIotGroup> loaded;
    int known = 0;
    const auto note = [&known](const Conversation::Progress& progress) {
        known = progress.groups_known;
    };
    const Conversation conversation(&property_);
    QVERIFY_EXCEPTION_THROWN(conversation.groupList(latin1(token), &loaded, note),
                             std::runtime_error);
    QCOMPARE(known, 1);
    QCOMPARE(loaded.size(), 1);
}

void TestConversation::groupsBeforeAFailureStay()
{
    service_->queue(two_groups);
    service_->queue(two_items);
    service_->queue("{\"errorcode\":9}");
    QList<PropertyTovikIotGroup> loaded;
    loaded.append(PropertyTovikIotGroup());
    const Outcome outcome = Conversation(&property_).groupList(latin1(token), &loaded);
    QCOMPARE(outcome.result, 9);
    QCOMPARE(loaded.size(), 1);
    QCOMPARE(loaded.first().name, latin1("One"));
    QCOMPARE(loaded.first().dataitems.size(), 2);
}

void TestConversation::valueOfAnotherKind_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("kind");
    QTest::newRow("boolean") << QByteArray("true") << latin1("true or false");
    QTest::newRow("text") << QByteArray("\"5\"") << latin1("a text");
    QTest::newRow("array") << QByteArray("[5]") << latin1("a list");
    QTest::newRow("object") << QByteArray("{}") << latin1("an object");
}

void TestConversation::valueOfAnotherKind()
{
    QFETCH(QByteArray, value);
    item_.value = 7;
    service_->queue("{\"errorcode\":0,\"value\":" + value + "}");
    Outcome outcome = run(latin1("read"));
    QCOMPARE(outcome.result, 0);
    QCOMPARE(int(outcome.reason), int(Outcome::other_kind));
    QTEST(outcome.detail, "kind");
    QCOMPARE(item_.value, QVariant(7));
    item_.type = latin1("odd");
    service_->queue("{\"errorcode\":0,\"value\":5}");
    outcome = run(latin1("read"));
    QCOMPARE(outcome.result, 0);
    QCOMPARE(int(outcome.reason), int(Outcome::unknown_type));
    QCOMPARE(item_.value, QVariant(7));
}

void TestConversation::writeInTwoHalves()
{
    const Conversation conversation(&property_);
    service_->queue("{\"errorcode\":3}");
    const std::unique_ptr<Post> post(conversation.postWrite(latin1(token), item_, 5));
    post->wait();
    QCOMPARE(conversation.takeWrite(post.get()).result, 3);
    QCOMPARE(service_->bodies(),
             QList<QByteArray>{"{\"dataitem_id\":\"A\",\"token\":\"T\",\"value\":5}"});
}

QTEST_GUILESS_MAIN(TestConversation)
#include "tst_conversation.moc"
