#include "tools/service/plant/project.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tovik_service::plant;

class TestCloudProjectFile : public QObject
{
    Q_OBJECT

private slots:
    void readsAllMembers();
    void fillsInDefaults();
    void namesWhatIsWrong_data();
    void namesWhatIsWrong();
    void givesLineAndColumn_data();
    void givesLineAndColumn();
    void namesTheFile();
};

namespace {

std::string withItem(const std::string& members)
{
    return R"({"accounts":[{"email":"e","password":"p","project":"x"}],)"
           R"("groups":[{"id":"g","name":"G","items":[{"id":"i","name":"I",)" +
           members + "}]}]}";
}

QByteArray problemOf(const std::string& text)
{
    try {
        parseProject(text);
    } catch (const ProjectError& error) {
        return error.what();
    }
    return "none";
}

} // namespace

void TestCloudProjectFile::readsAllMembers()
{
    const Project project = parseProject(R"({
        "accounts": [{"email": "e", "password": "p", "project": "x"}],
        "groups": [{"id": "g", "name": "Büro", "location": "L", "ddLocation": "D", "alert": true,
                    "permission": "R", "items": [
            {"id": "i", "name": "Außen", "type": "16Bit-INT", "length": 3, "alert": true,
             "cloud_status": 2, "readonly": true,
             "value": {"generator": "random-walk", "min": -5, "max": 5, "seed": 9}}]}]})");
    const Group& group = project.groups.at(0);
    QVERIFY(group.name == "Büro" && group.location == "L" && group.dd_location == "D");
    QVERIFY(group.alert && !group.isWritable());
    const Item& item = group.items.at(0);
    QVERIFY(item.name == "Außen" && item.type == ValueType::Int16 && item.length == 3);
    QVERIFY(item.alert && item.read_only && item.cloud_status == 2);
    QVERIFY(item.generator.kind == GeneratorKind::RandomWalk && item.generator.seed == 9);
    QCOMPARE(item.generator.start, 0.0);
}

void TestCloudProjectFile::fillsInDefaults()
{
    const Project project = parseProject(withItem(R"("type":"16Bit-HEX")"));
    const Item& item = project.groups.at(0).items.at(0);
    QVERIFY(!item.alert && !item.read_only && item.cloud_status == 1 && item.length == 16);
    QVERIFY(item.generator.kind == GeneratorKind::Constant);
    QVERIFY(item.generator.values.at(0) == "0000");
    QVERIFY(project.groups.at(0).isWritable());
    const Project clamped =
        parseProject(withItem(R"("type":"16Bit-BCD","value":{"generator":"ramp","max":1e9})"));
    QCOMPARE(clamped.groups.at(0).items.at(0).generator.max, 9999.0);
}

void TestCloudProjectFile::namesWhatIsWrong_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("problem");
    const auto row = [](const char* title, const std::string& text, const char* problem) {
        QTest::newRow(title) << QByteArray::fromStdString(text) << QByteArray(problem);
    };
    row("not an object", "[]", "$: needs an object, not array");
    row("no accounts", "{}", "$, member \"accounts\": is missing");
    row("empty accounts", R"({"accounts":[]})", "$, member \"accounts\": needs a list");
    row("unknown type", withItem(R"("type":"Byte")"),
        "$.groups[0].items[0], member \"type\": unknown type \"Byte\"; use one of \"Bit\"");
    row("misspelt member", withItem(R"("type":"Bit","readOnly":true)"),
        "$.groups[0].items[0], member \"readOnly\": unknown member");
    row("wrong kind", withItem(R"("type":"Bit","alert":"yes")"),
        "member \"alert\": needs true or false, not string");
    row("value out of range", withItem(R"("type":"16Bit-UINT","value":70000)"),
        "$.groups[0].items[0], member \"value\": 16Bit-UINT needs a number from 0 to 65535");
    row("unknown generator", withItem(R"("type":"Bit","value":{"generator":"noise"})"),
        "$.groups[0].items[0].value, member \"generator\": unknown \"noise\"; use one of");
    row("number generator for a text", withItem(R"("type":"String","value":{"generator":"sine"})"),
        "a text needs constant or list");
    row("parameter of another generator",
        withItem(R"("type":"Bit","value":{"generator":"ramp","seed":1})"),
        "member \"seed\": unknown member");
    row("minimum above maximum",
        withItem(R"("type":"16Bit-INT","value":{"generator":"ramp","min":5,"max":1})"),
        "member \"min\": is greater than \"max\"");
    row("no period", withItem(R"("type":"Bit","value":{"generator":"sine","period":0})"),
        "member \"period\": needs at least 0.01");
    row("empty list", withItem(R"("type":"Bit","value":{"generator":"list","values":[]})"),
        "member \"values\": needs a list");
    row("id used twice", withItem(R"("type":"Bit"},{"id":"i","name":"J","type":"Bit")"),
        "$.groups[0].items[1], member \"id\": \"i\" is used by another item");
}

void TestCloudProjectFile::namesWhatIsWrong()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, problem);
    const QByteArray found = problemOf(text.toStdString());
    QVERIFY2(found.contains(problem), found.constData());
}

void TestCloudProjectFile::givesLineAndColumn_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("problem");
    QTest::newRow("first line") << QByteArray("{x}") << QByteArray("line 1, column 2:");
    QTest::newRow("third line") << QByteArray("{\n\"a\":\n  x}") << QByteArray("line 3, column 3:");
    QTest::newRow("ends too early")
        << QByteArray("{\n\"a\": 1") << QByteArray("(the file ends too early)");
    QTest::newRow("empty") << QByteArray() << QByteArray("line 1, column 1:");
}

void TestCloudProjectFile::givesLineAndColumn()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, problem);
    const QByteArray found = problemOf(text.toStdString());
    QVERIFY2(found.contains(problem), found.constData());
}

void TestCloudProjectFile::namesTheFile()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("bad.json"));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{");
    file.close();
    for (const QString& path : {name, folder.filePath(QStringLiteral("missing.json"))}) {
        try {
            loadProject(path.toStdString());
            QFAIL("no error");
        } catch (const ProjectError& error) {
            QVERIFY(QByteArray(error.what()).startsWith(path.toUtf8() + ": "));
        }
    }
}

QTEST_APPLESS_MAIN(TestCloudProjectFile)
#include "tst_cloud_project_file.moc"
