#include "tools/host/config/config_file.h"
#include "tools/host/config/json_file.h"
#include "tools/host/terminal/exit_code.h"

#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <thread>

using namespace tovik_host;
using namespace tovik_host::config;

class TestHostConfigFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEverything();
    void hasDefaults();
    void namesPlaceOfError_data();
    void namesPlaceOfError();
    void neverQuotesThePassword();
    void warnsOfRepeatedNames();
    void takesPasswordFromElsewhere_data();
    void takesPasswordFromElsewhere();
    void saysThatFileIsMissing();
    void readsAFileThatIsReplaced();
    void readsALongList();

private:
    QString write(const QByteArray& text);
    QString errorOf(const QByteArray& text);

    QTemporaryDir folder_;
};

namespace {

const char service[] =
    "\"service\": {\"url\": \"https://h\", \"project\": \"p\", \"email\": \"e\", "
    "\"password\": \"x\"}";

/// A file with this service object and one item.
QByteArray withService(const char* object)
{
    return QByteArray("{\n\"service\":\n") + object +
           ",\n\"items\": [{\"name\": \"a\", \"id\": \"i\", \"type\": \"Bit\"}]}";
}

} // namespace

QString TestHostConfigFile::write(const QByteArray& text)
{
    QFile file(folder_.filePath(QStringLiteral("c.json")));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

/// The message without the folder.
QString TestHostConfigFile::errorOf(const QByteArray& text)
{
    try {
        loadConfig(write(text));
    } catch (const terminal::UsageError& error) {
        return error.message().remove(folder_.path() + QLatin1Char('/'));
    }
    return QString();
}

void TestHostConfigFile::readsEverything()
{
    const QString path = write(R"({
  "service": {"url": "https://cloud.example", "project": "Anlage ü", "email": "a@b", "password": "x"},
  "items": [
    {"name": "A", "id": "1", "type": "32Bit-FLOAT"},
    {"name": "B", "id": "2", "type": "String", "length": 12}
  ],
  "error_handling": {"type": 1, "return_time": 7, "retry_count": 4, "return_time_enabled": false,
                     "restore_switch_enabled": true}
})");
    const LoadedConfig loaded = loadConfig(path);
    QVERIFY(loaded.warnings.isEmpty());
    const HostConfig& config = loaded.config;
    QCOMPARE(config.service.url, QStringLiteral("https://cloud.example"));
    QCOMPARE(config.service.project, QStringLiteral("Anlage \u00fc"));
    QCOMPARE(config.service.password, QStringLiteral("x"));
    QCOMPARE(config.items.size(), 2);
    QCOMPARE(config.items.at(1).type->name, "String");
    QCOMPARE(config.items.at(1).length, 12);
    QCOMPARE(findItem(config.items, QStringLiteral("A"))->id, QStringLiteral("1"));
    QCOMPARE(config.error_handling.type, 1);
    QCOMPARE(config.error_handling.return_time, 7);
    QCOMPARE(config.error_handling.retry_count, 4);
    QVERIFY(!config.error_handling.return_time_enabled);
    QVERIFY(config.error_handling.restore_switch_enabled);
}

void TestHostConfigFile::hasDefaults()
{
    const HostConfig config =
        loadConfig(write(withService("{\"project\": \"p\", \"email\": \"e\", \"password\": \"\"}")))
            .config;
    QVERIFY(config.service.url.isEmpty());
    QVERIFY(config.service.password.isEmpty());
    QCOMPARE(config.items.first().length, 0);
    QCOMPARE(config.error_handling.type, 0);
    QCOMPARE(config.error_handling.return_time, 5);
    QCOMPARE(config.error_handling.retry_count, 3);
    QVERIFY(config.error_handling.return_time_enabled);
    QVERIFY(!config.error_handling.restore_switch_enabled);
}

void TestHostConfigFile::namesPlaceOfError_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("start");
    const auto row = [](const char* name, const QByteArray& text, const char* start) {
        QTest::newRow(name) << text << QString::fromUtf8(start);
    };
    const auto items = [](const char* list) {
        return QByteArray("{") + service + ",\n\"items\":\n" + list + "}";
    };
    const auto handling = [](const char* object) {
        return QByteArray("{") + service +
               ",\"items\": [{\"name\": \"a\", \"id\": \"i\", \"type\": \"Bit\"}],\n\n" +
               "\"error_handling\": {\n" + object + "}}";
    };
    row("empty file", "", "c.json:1: not valid JSON: ");
    row("syntax", "{\n\"service\": {,\n}}", "c.json:2: not valid JSON: unexpected ','");
    row("end too early", "{\n\"items\": [\n", "c.json:2: not valid JSON: unexpected end of input");
    row("comma too many", "{\n\"items\": [1,\n]}", "c.json:3: not valid JSON: ");
    row("not UTF-8", "{\n\"a\xff\": 1}", "c.json:2: not valid JSON: ");
    row("no object", "[]", "c.json:1: must be an object");
    row("no service", "{\"items\": []}", "c.json:1: the member \"service\" is missing");
    row("no items", QByteArray("{") + service + "}", "c.json:1: the member \"items\" is missing");
    row("unknown member", QByteArray("{") + service + ",\n\"item\": []}",
        "c.json:2: item: is no member of this object; it may have: service, items");
    row("member twice", "{\n\"items\": [],\n\"items\": []}",
        "c.json:3: member \"items\" stands twice");
    row("service is a text", withService("\"x\""), "c.json:2: service: must be an object");
    row("bad address", withService("{\n\"url\": \"ftp://x\"}"), "c.json:4: service.url: must be");
    row("no password", withService("{\"project\": \"p\", \"email\": \"e\"}"),
        "c.json:2: service: no password is given: add \"password_file\", \"password_env\" or "
        "\"password\", or set TOVIK_PASSWORD");
    row("number beyond a double", "{\n\"x\": 1e999}",
        "c.json:2: not valid JSON: a number is beyond what a double holds");
    row("a project file of the service", "{\"accounts\": [], \"groups\": []}",
        "c.json:1: is a project file of tovik-cloud, and a configuration is wanted");
    row("a catalogue", "{\"service\": {}, \"groups\": []}",
        "c.json:1: is a catalogue, and a configuration is wanted");
    row("no project", withService("{\"email\": \"e\"}"),
        "c.json:2: service: the member \"project\" is missing");
    row("empty email", withService("{\"project\": \"p\",\n\"email\": \"\"}"),
        "c.json:4: service.email: must not be empty");
    row("misspelt password", withService("{\"project\": \"p\",\n\"pasword\": \"\"}"),
        "c.json:4: service.pasword: is no member");
    row("two passwords",
        withService("{\"project\": \"p\", \"email\": \"e\", \"password\": \"x\",\n"
                    "\"password_env\": \"HOME\"}"),
        "c.json:4: service.password_env: \"password\" gives the password already");
    row("no password file",
        withService("{\"project\": \"p\", \"email\": \"e\",\n\"password_file\": \"none\"}"),
        "c.json:4: service.password_file: cannot read \"none\"");
    row("no password variable",
        withService("{\"project\": \"p\", \"email\": \"e\",\n\"password_env\": \"TOVIK_NONE\"}"),
        "c.json:4: service.password_env: the environment has no variable \"TOVIK_NONE\"");
    row("items is no list", items("{}"), "c.json:2: items: must be a list");
    row("list without items", items("[]"), "c.json:2: items: must name at least one item");
    row("item is a number", items("[\n4\n]"), "c.json:4: items[0]: must be an object");
    row("item without id", items("[\n{\"name\": \"a\",\n\"type\": \"Bit\"}]"),
        "c.json:4: items[0]: the member \"id\" is missing");
    row("name is a number", items("[{\n\"name\": 4}]"), "c.json:4: items[0].name: must be a text");
    row("unknown type",
        items("[{\"name\": \"a\", \"id\": \"i\", \"type\": \"Bit\"},\n{\"name\": \"b\",\n"
              "\"id\": \"j\",\n\"type\": \"bit\"}]"),
        "c.json:6: items[1].type: \"bit\" is no type; the types are: Bit, 16Bit-BCD");
    row("length of a number",
        items("[{\"name\": \"a\", \"id\": \"i\", \"type\": \"Bit\",\n\"length\": 4}]"),
        "c.json:4: items[0].length: only items of type String");
    row("length of zero",
        items("[{\"name\": \"a\", \"id\": \"i\", \"type\": \"String\",\n\"length\": 0}]"),
        "c.json:4: items[0].length: must be a whole number from 1 to 65535");
    row("misspelt item member", items("[{\"nane\": \"a\"}]"), "c.json:3: items[0].nane: is no");
    row("unknown handling", handling("\"type\": 4"),
        "c.json:4: error_handling.type: must be a whole number from 0 to 3");
    row("fraction of a second", handling("\"return_time\": 1.5"),
        "c.json:4: error_handling.return_time: must be a whole number from 1 to 86400");
    row("huge number", handling("\"retry_count\": 18446744073709551615"),
        "c.json:4: error_handling.retry_count: must be a whole number");
    row("flag as a number", handling("\"return_time_enabled\": 1"),
        "c.json:4: error_handling.return_time_enabled: must be true or false");
}

void TestHostConfigFile::namesPlaceOfError()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, start);
    const QString error = errorOf(text);
    QVERIFY2(error.startsWith(start), qPrintable(error));
}

void TestHostConfigFile::neverQuotesThePassword()
{
    const QString error = errorOf(withService("{\"password\": \"hunter2\" \"hunter2\"}"));
    QVERIFY2(error.contains(QLatin1String("not valid JSON")), qPrintable(error));
    QVERIFY2(!error.contains(QLatin1String("hunter2")), qPrintable(error));
    const QString unended = errorOf(withService("{\"password\": \"hunter2\n\"}"));
    QVERIFY2(!unended.contains(QLatin1String("hunter2")), qPrintable(unended));
}

void TestHostConfigFile::warnsOfRepeatedNames()
{
    const LoadedConfig loaded =
        loadConfig(write(QByteArray("{") + service +
                         ",\n\"items\": [\n{\"name\": \"a\", \"id\": \"i\", \"type\": \"Bit\"},\n"
                         "{\"name\": \"a\", \"id\": \"j\", \"type\": \"Bit\"}]}"));
    QCOMPARE(loaded.warnings.size(), 1);
    QVERIFY2(loaded.warnings.first().endsWith(QLatin1String(
                 "c.json:4: items[1].name: items[0] has the name \"a\" already; the driver serves "
                 "the first one only")),
             qPrintable(loaded.warnings.first()));
}

void TestHostConfigFile::takesPasswordFromElsewhere_data()
{
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<QString>("password");
    QTest::newRow("file beside the configuration")
        << QByteArray("\"password_file\": \"secret\"") << QStringLiteral("from f\u00eele");
    QTest::newRow("variable") << QByteArray("\"password_env\": \"TOVIK_TEST_PASSWORD\"")
                              << QStringLiteral("from environment");
    QTest::newRow("usual variable")
        << QByteArray("\"url\": \"http://h\"") << QStringLiteral("from the usual one");
}

void TestHostConfigFile::takesPasswordFromElsewhere()
{
    QFETCH(QByteArray, member);
    QFETCH(QString, password);
    QFile file(folder_.filePath(QStringLiteral("secret")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("from f\u00eele\r\nsecond line\n");
    file.close();
    qputenv("TOVIK_TEST_PASSWORD", "from environment");
    qputenv("TOVIK_PASSWORD", "from the usual one");
    const QByteArray object = "{\"project\": \"p\", \"email\": \"e\", " + member + "}";
    const HostConfig config = loadConfig(write(withService(object.constData()))).config;
    qunsetenv("TOVIK_PASSWORD");
    QCOMPARE(config.service.password, password);
}

void TestHostConfigFile::saysThatFileIsMissing()
{
    try {
        loadConfig(folder_.filePath(QStringLiteral("none.json")));
        QFAIL("a file that is not there was read");
    } catch (const terminal::UsageError& error) {
        QVERIFY(error.message().startsWith(QLatin1String("cannot read the configuration")));
    }
}

/// What has been opened stays, though its name leads to another by now.
void TestHostConfigFile::readsAFileThatIsReplaced()
{
    QByteArray items;
    for (int i = 0; i < 300; ++i) {
        const QByteArray number = QByteArray::number(i);
        items += (i == 0 ? "" : ",") + QByteArray("{\"name\": \"") + number + "\", \"id\": \"" +
                 number + "\", \"type\": \"Bit\"}";
    }
    const QByteArray longer = QByteArray("{") + service + ", \"items\": [" + items + "]}";
    const QByteArray shorter =
        QByteArray("{") + service + R"(, "items": [{"name": "a", "id": "i", "type": "Bit"}]})";
    const QByteArray path = QFile::encodeName(folder_.filePath(QStringLiteral("replaced")));
    const QByteArray next = path + ".next";
    const std::array<QByteArray, 2> sources{path + ".1", path + ".2"};
    QVERIFY(QFile::rename(write(longer), QFile::decodeName(sources[0])));
    QVERIFY(QFile::rename(write(shorter), QFile::decodeName(sources[1])));
    const auto replace = [&](std::size_t source) {
        return ::link(sources[source].constData(), next.constData()) == 0 &&
               ::rename(next.constData(), path.constData()) == 0;
    };
    QVERIFY(replace(0));
    std::atomic<bool> is_done{false};
    std::atomic<bool> is_replaced{true};
    std::thread writer([&] {
        for (std::size_t i = 1; !is_done && is_replaced; ++i) {
            is_replaced = replace(i % sources.size());
            QThread::usleep(100); // the reader wants the folder, too
        }
    });
    QMap<int, int> seen;
    QString error;
    QElapsedTimer patience;
    patience.start();
    while (error.isEmpty() && (seen.value(1) < 10 || seen.value(300) < 10) &&
           patience.elapsed() < 60000) {
        try {
            ++seen[loadConfig(QFile::decodeName(path)).config.items.size()];
        } catch (const terminal::UsageError& what) {
            error = what.message();
        }
    }
    is_done = true;
    writer.join();
    QCOMPARE(error, QString());
    QVERIFY(is_replaced);
    QCOMPARE(seen.keys(), (QList<int>{1, 300}));
}

/// A time that grows with the square of the length would be more than a minute.
void TestHostConfigFile::readsALongList()
{
    const QByteArray text = "{\"items\": [" + QByteArray("{},").repeated(39999) + "{}]}";
    const std::clock_t before = std::clock();
    const JsonFile file = parseJson(QStringLiteral("x"), text);
    const double seconds = double(std::clock() - before) / CLOCKS_PER_SEC;
    QCOMPARE(int(file.root.at("items").size()), 40000);
    QCOMPARE(file.lines.size(), 40001);
    QVERIFY2(seconds < 20, qPrintable(QString::number(seconds)));
}

QTEST_APPLESS_MAIN(TestHostConfigFile)
#include "tst_host_config_file.moc"
