#include "tools/host/service/catalogue.h"
#include "tools/host/terminal/exit_code.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

using namespace tovik_host;
using namespace tovik_host::service;

class TestHostCatalogueFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsBackWhatWasSaved_data();
    void bringsBackWhatWasSaved();
    void keepsSecretsOut();
    void namesPlaceOfError_data();
    void namesPlaceOfError();
    void saysThatFileIsMissing();
    void takesLargeCatalogues();

private:
    QString write(const QByteArray& text);

    QTemporaryDir folder_;
};

namespace {

Catalogue withNames(const QString& group, const QString& item)
{
    PropertyTovikIotDataItem entry;
    entry.dataitem_id = QStringLiteral("i");
    entry.name = item;
    entry.type = QStringLiteral("String");
    entry.length = 40;
    entry.alert = true;
    PropertyTovikIotGroup full;
    full.group_id = QStringLiteral("g");
    full.name = group;
    full.location = QStringLiteral("L");
    full.permission = QStringLiteral("R");
    full.alert = true;
    full.dataitems << entry;
    PropertyTovikIotGroup empty;
    empty.group_id = QStringLiteral("empty");
    empty.name = QStringLiteral("E");
    empty.permission.clear();
    return {{QStringLiteral("https://h:1"), QStringLiteral("p"), QStringLiteral("e"), QString()},
            {full, empty}};
}

} // namespace

QString TestHostCatalogueFile::write(const QByteArray& text)
{
    QFile file(folder_.filePath(QStringLiteral("c.json")));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

void TestHostCatalogueFile::bringsBackWhatWasSaved_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("item");
    QTest::newRow("plain") << QStringLiteral("Boiler") << QStringLiteral("Flow");
    QTest::newRow("slashes") << QStringLiteral("A/B") << QStringLiteral("/C/");
    QTest::newRow("control characters") << QStringLiteral("A\n\t") << QStringLiteral("\x01\x7f");
    QTest::newRow("emoji") << QString::fromUtf8("\xF0\x9F\x9A\x80")
                           << QString::fromUtf8("CO\u2082");
    QTest::newRow("quotes") << QStringLiteral("\"A\"") << QStringLiteral("\\");
}

void TestHostCatalogueFile::bringsBackWhatWasSaved()
{
    QFETCH(QString, group);
    QFETCH(QString, item);
    const QString text = catalogueJson(withNames(group, item));
    const config::JsonFile file = config::readJson(write(text.toUtf8()));
    QVERIFY(isCatalogue(file));
    const Catalogue read = readCatalogue(file);
    QCOMPARE(read.groups.size(), 2);
    QCOMPARE(read.groups.at(0).name, group);
    QCOMPARE(read.groups.at(0).dataitems.at(0).name, item);
    // All else shows in the text.
    QCOMPARE(catalogueJson(read), text);
    QVERIFY(text.endsWith(QLatin1String("}\n")));
}

void TestHostCatalogueFile::keepsSecretsOut()
{
    Catalogue catalogue = withNames(QStringLiteral("G"), QStringLiteral("I"));
    catalogue.account.url = QStringLiteral("https://me:s3cret@h:1");
    const QString text = catalogueJson(catalogue);
    QVERIFY(text.contains(QLatin1String("\"https://h:1\"")));
    QVERIFY(!text.contains(QLatin1String("s3cret")));
}

void TestHostCatalogueFile::namesPlaceOfError_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* text, const char* message) {
        QTest::newRow(name) << QByteArray(text) << QString::fromLatin1(message);
    };
    row("no JSON", "{\n\"groups\": [,]\n}", "c.json:2: not valid JSON: unexpected");
    row("empty", "", "c.json:1: not valid JSON");
    row("list", "[]", "c.json:1: must be an object: { ... }");
    row("no service", "{\"groups\": []}", "c.json:1: the member \"service\" is missing");
    row("bad address", "{\"service\": {\n\"url\": \"x\"}, \"groups\": []}",
        "c.json:2: service.url: must be an address");
    row("no groups", "{\"service\": {}}", "c.json:1: the member \"groups\" is missing");
    row("groups no list", "{\"service\": {},\n\"groups\": 1}", "c.json:2: groups: must be a list");
    row("group no object", "{\"service\": {}, \"groups\": [\n1]}",
        "c.json:2: groups[0]: must be an object");
    row("no items", "{\"service\": {}, \"groups\": [\n{\"id\": \"g\", \"name\": \"G\"}]}",
        "c.json:2: groups[0]: the member \"items\" is missing");
    row("item without id",
        "{\"service\": {}, \"groups\": [{\"id\": \"g\", \"name\": \"G\", \"items\": [\n"
        "{\"name\": \"I\"}]}]}",
        "c.json:2: groups[0].items[0]: the member \"id\" is missing");
    row("unknown type",
        "{\"service\": {}, \"groups\": [{\"id\": \"g\", \"name\": \"G\", \"items\": [\n"
        "{\"name\": \"I\", \"id\": \"i\",\n\"type\": \"Byte\"}]}]}",
        "c.json:3: groups[0].items[0].type: \"Byte\" is no type; the types are: Bit, ");
    row("unknown member", "{\"service\": {}, \"groups\": [],\n\"item\": 1}",
        "c.json:2: item: is no member of this object");
    row("member twice", "{\"service\": {}, \"groups\": [],\n\"groups\": []}",
        "c.json:2: member \"groups\" stands twice in one object");
}

void TestHostCatalogueFile::namesPlaceOfError()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    try {
        readCatalogue(config::readJson(write(text)));
    } catch (const terminal::UsageError& error) {
        const QString shown = error.message().remove(folder_.path() + QLatin1Char('/'));
        QVERIFY2(shown.startsWith(message), qPrintable(shown));
        return;
    }
    QFAIL("no error");
}

void TestHostCatalogueFile::saysThatFileIsMissing()
{
    try {
        config::readJson(QStringLiteral("/nowhere/c.json"), QStringLiteral("catalogue"));
    } catch (const terminal::UsageError& error) {
        QCOMPARE(error.message(), QStringLiteral("cannot read the catalogue \"/nowhere/c.json\": "
                                                 "No such file or directory"));
        return;
    }
    QFAIL("no error");
}

void TestHostCatalogueFile::takesLargeCatalogues()
{
    Catalogue catalogue = withNames(QStringLiteral("G"), QStringLiteral("I"));
    PropertyTovikIotGroup group = catalogue.groups.first();
    while (group.dataitems.size() < 100)
        group.dataitems << group.dataitems.first();
    catalogue.groups.clear();
    while (catalogue.groups.size() < 100)
        catalogue.groups << group;
    QElapsedTimer elapsed;
    elapsed.start();
    const Catalogue read =
        readCatalogue(config::readJson(write(catalogueJson(catalogue).toUtf8())));
    QCOMPARE(read.itemCount(), 10000);
    // What takes a second here would take minutes if anything were looked up item by item.
    QVERIFY(elapsed.elapsed() < 50000);
}

QTEST_GUILESS_MAIN(TestHostCatalogueFile)
#include "tst_host_catalogue_file.moc"
