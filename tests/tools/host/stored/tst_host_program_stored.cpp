#include "tests/property/records.h"
#include "tests/property/stream_bytes.h"
#include "tests/support/host_process.h"
#include "tests/tools/host/stored/stored_run.h"
#include "tests/tools/host/stored/stored_samples.h"

#include <QDataStream>
#include <QTest>

using namespace tovik_host::stored;

namespace {

const Format qt4_variant = {true, 12, true, false};

} // namespace

class TestHostProgramStored : public QObject, private StoredRun
{
    Q_OBJECT

private Q_SLOTS:
    void init() { newFolder(); }
    void roundTripsByteForByte_data() { addStoredLayoutRows(); }
    void roundTripsByteForByte();
    void convertsConfigurationOfWatch();
    void convertsBetweenStreams();
    void asksForWhatIsNotKnown_data();
    void asksForWhatIsNotKnown();
    void usesStandardInputAndOutput();
    void salvages();
    void showsStreams();
    void showsDamagedStreams();
    void showsJson();
    void refusesFiles_data();
    void refusesFiles();
    void asksWhatAStreamIsTurnedInto();
    void asksToConvertWhatIsAmbiguous();
    void notesWhatAConfigurationLacks();
};

// Without any option: the JSON remembers the format.
void TestHostProgramStored::roundTripsByteForByte()
{
    QFETCH(Format, format);
    PropertyTovikIot record = filledRoot(2, 2);
    record.dataitems << recordWith(allValues()).dataitems;
    const QByteArray bytes = writtenByQt(record, format);
    QCOMPARE(convert(write("a.bin", bytes), path("a.json")), 0);
    QCOMPARE(errors_, QString());
    QCOMPARE(convert(path("a.json"), path("b.bin")), 0);
    QCOMPARE(read(path("b.bin")).toHex(), bytes.toHex());
    QCOMPARE(convert(path("b.bin"), path("b.json")), 0);
    QCOMPARE(read(path("b.json")), read(path("a.json")));
}

void TestHostProgramStored::convertsConfigurationOfWatch()
{
    const QString config = write("c.json", R"({
  "service": {"url": "https://h", "project": "p", "email": "e", "password_file": "pw"},
  "items": [{"name": "A", "id": "1", "type": "Bit"},
            {"name": "B", "id": "2", "type": "String", "length": 7}],
  "error_handling": {"type": 1}
})");
    write("pw", "secret\n");
    const QStringList options = {QStringLiteral("--form"), QStringLiteral("variant"),
                                 QStringLiteral("--stream-version"), QStringLiteral("Qt_4_8")};
    QCOMPARE(convert(config, path("c.bin"), options), 0);
    QVERIFY2(errors_.contains(QLatin1String("has no groups, no cached values")),
             qPrintable(errors_));
    QVERIFY2(errors_.contains(QLatin1String("error_handling is not part of the record")),
             qPrintable(errors_));
    const PropertyTovikIot record = readByQt(read(path("c.bin")), qt4_variant);
    PropertyTovikIot expected;
    expected.host = QStringLiteral("https://h");
    expected.project = QStringLiteral("p");
    expected.email = QStringLiteral("e");
    expected.password = QStringLiteral("secret");
    PropertyTovikIotDataItem item;
    item.name = QStringLiteral("A");
    item.dataitem_id = QStringLiteral("1");
    item.type = QStringLiteral("Bit");
    expected.dataitems << item;
    item.name = QStringLiteral("B");
    item.dataitem_id = QStringLiteral("2");
    item.type = QStringLiteral("String");
    item.length = 7;
    expected.dataitems << item;
    QCOMPARE(describe(record), describe(expected));
    // The record as JSON, by the name of the file.
    QCOMPARE(convert(config, path("record.json")), 0);
    QVERIFY(read(path("record.json")).startsWith("{\n  \"tovik_iot\": {\n"));
}

void TestHostProgramStored::convertsBetweenStreams()
{
    const PropertyTovikIot record = recordWith(driverValues());
    const QString old = write("old.bin", writtenByQt(record, qt4_variant));
    QCOMPARE(
        convert(old, path("new.bin"),
                {QStringLiteral("--to"), QStringLiteral("stream"), QStringLiteral("--form"),
                 QStringLiteral("record"), QStringLiteral("--stream-version"), QStringLiteral("19"),
                 QStringLiteral("--byte-order"), QStringLiteral("little")}),
        0);
    QCOMPARE(read(path("new.bin")).toHex(), writtenByQt(record, {false, 19, false, false}).toHex());
}

void TestHostProgramStored::asksForWhatIsNotKnown_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("message");
    QTest::newRow("form") << QStringList() << QStringLiteral("--form variant (as a QVariant)");
    QTest::newRow("version") << QStringList{QStringLiteral("--form"), QStringLiteral("record")}
                             << QStringLiteral("add --stream-version 12");
    QTest::newRow("version that cannot hold it")
        << QStringList{QStringLiteral("--form"), QStringLiteral("record"),
                       QStringLiteral("--stream-version"), QStringLiteral("7")}
        << QStringLiteral("dataitems[0].value: would not come back as it is from a stream of "
                          "version 7 in double precision");
    QTest::newRow("version that there is not")
        << QStringList{QStringLiteral("--stream-version"), QStringLiteral("Qt_6_0")}
        << QStringLiteral("give a number from 1 to 19, or a release of Qt such as Qt_4_8");
}

void TestHostProgramStored::asksForWhatIsNotKnown()
{
    QFETCH(QStringList, options);
    QFETCH(QString, message);
    const QString json = write("a.json", R"({"tovik_iot": {"dataitems": [
        {"value": {"type": "short", "stream": "AAAAIQEAAA=="}}]}})");
    QCOMPARE(convert(json, path("a.bin"), options), 2);
    QVERIFY2(errors_.contains(message), qPrintable(errors_));
    QVERIFY(!QFile::exists(path("a.bin")));
}

void TestHostProgramStored::usesStandardInputAndOutput()
{
    const QByteArray bytes = writtenByQt(filledRoot(1, 1), qt4_variant);
    HostProcess host;
    const QString dash = QStringLiteral("-");
    host.startBare({QStringLiteral("convert"), dash, dash});
    // In two pieces, as a pipe may give them.
    host.process().write(bytes.left(100));
    QVERIFY(host.process().waitForBytesWritten());
    host.process().write(bytes.mid(100));
    host.process().closeWriteChannel();
    QCOMPARE(host.wait(), 0);
    const PropertyTovikIot record = recordFromJson(jsonFile(host.output().toUtf8()));
    QCOMPARE(describe(record), describe(filledRoot(1, 1)));
}

void TestHostProgramStored::salvages()
{
    const QByteArray bytes = writtenByQt(filledRoot(0, 3), qt4_variant);
    const QString cut = write("cut.bin", bytes.left(bytes.size() - 8));
    QCOMPARE(convert(cut, path("a.json"), {QStringLiteral("--salvage")}), 0);
    QVERIFY2(errors_.contains(QLatin1String("dataitems[2].cloud_status: ")), qPrintable(errors_));
    const PropertyTovikIot record = recordFromJson(jsonFile(read(path("a.json"))));
    PropertyTovikIot expected = filledRoot(0, 3);
    const PropertyTovikIotDataItem defaults;
    expected.dataitems[2].cloud_status = defaults.cloud_status;
    expected.dataitems[2].alert = defaults.alert;
    expected.dataitems[2].update_time = defaults.update_time;
    expected.dataitems[2].marked = defaults.marked;
    QCOMPARE(describe(record), describe(expected));
}

void TestHostProgramStored::showsStreams()
{
    PropertyTovikIot record = filledRoot(1, 0);
    record.dataitems << recordWith({QVariant::fromValue(-0.5f), QStringLiteral("a\x1b[2J"),
                                    QString(), QVariant()})
                            .dataitems;
    const QString file = write("a.bin", writtenByQt(record, qt4_variant));
    QCOMPARE(show(file), 0);
    QCOMPARE(errors_, QString());
    for (const char* text :
         {": a configuration record in a variant, stream version 12 (Qt 4.6 to 4.8), big endian, ",
          "host       https://other.example\n", "aux_value  -7\n",
          ("group g 0: name group 0, location hall 0, ddLocation rack 0, alert true, permission R, "
           "marked true, no items"),
          "4 served items\n", "float -0.5 ", "QString a\xc2\xb7[2J ", "QString (null) ",
          "invalid "})
        QVERIFY2(output_.contains(QString::fromUtf8(text)), qPrintable(output_));
    QVERIFY(!output_.contains(QChar(0x1b)));
}

void TestHostProgramStored::showsDamagedStreams()
{
    const QByteArray bytes = writtenByQt(filledRoot(1, 2), qt4_variant);
    StreamBytes name(StreamFormat{12, QDataStream::BigEndian, QDataStream::DoublePrecision});
    const int second = bytes.indexOf(name.text(QStringLiteral("item 101")).bytes());
    QVERIFY(second > 0);
    const QString none = write("none.bin", "root:x:0:0:");
    QCOMPARE(show(none), 1);
    QCOMPARE(output_,
             none + QStringLiteral(": nothing of a configuration record can be read, 11 bytes\n"));
    const QString file = write("a.bin", bytes.left(second + 14));
    QCOMPARE(show(file), 1);
    QVERIFY2(output_.contains(QLatin1String("1 served item\n")), qPrintable(output_));
    QVERIFY2(output_.contains(QLatin1String("item 100")), qPrintable(output_));
    QVERIFY2(errors_.startsWith(
                 QStringLiteral("tovik-host: %1: byte %2: dataitems[1].name: takes more than the "
                                "14 bytes that the file still has\n")
                     .arg(file)
                     .arg(second)),
             qPrintable(errors_));
    QCOMPARE(show(file, {QStringLiteral("--json")}), 1);
    const auto json = nlohmann::json::parse(output_.toStdString());
    QCOMPARE(json.at("problems").size(), std::size_t(1));
    QCOMPARE(json.at("problems").at(0).at("offset").get<int>(), second);
    QCOMPARE(json.at("problems").at(0).at("member").get<std::string>(),
             std::string("dataitems[1].name"));
}

void TestHostProgramStored::showsJson()
{
    const QString json = write("a.json", "{\"tovik_iot\": {\"project\": \"p\"}}");
    QCOMPARE(show(json), 0);
    QVERIFY(output_.startsWith(json + QLatin1String(": a configuration record as JSON\n")));
    QVERIFY(output_.contains(QLatin1String("project    p\n")));
    const QString config = write("c.json", R"({"service": {"project": "q", "email": "e"},
        "items": [{"name": "A", "id": "1", "type": "Bit"}]})");
    QCOMPARE(show(config), 0);
    QVERIFY(output_.contains(QLatin1String("project    q\n")));
    QVERIFY(output_.contains(QLatin1String("1 served item\n")));
    QVERIFY2(errors_.contains(QLatin1String("has no service.url")), qPrintable(errors_));
}

void TestHostProgramStored::refusesFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("is empty");
    QTest::newRow("JSON of something else")
        << QByteArray("{\"link\": {}}")
        << QStringLiteral(":1: neither the member \"tovik_iot\" (a record) nor \"service\"");
    QTest::newRow("syntax") << QByteArray("{\"tovik_iot\": {\n,}}")
                            << QStringLiteral(":2: not valid JSON: ");
    QTest::newRow("twice") << QByteArray("{\"tovik_iot\": {},\n\"tovik_iot\": {}}")
                           << QStringLiteral(":2: member \"tovik_iot\" stands twice");
}

void TestHostProgramStored::refusesFiles()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    const QString file = write("x", bytes);
    QCOMPARE(show(file), 2);
    QVERIFY2(errors_.startsWith(QStringLiteral("tovik-host: ") + file), qPrintable(errors_));
    QVERIFY2(errors_.contains(message), qPrintable(errors_));
    QCOMPARE(output_, QString());
    QCOMPARE(show(path("none")), 2);
    QVERIFY2(errors_.contains(QLatin1String("cannot read ")), qPrintable(errors_));
}

void TestHostProgramStored::asksWhatAStreamIsTurnedInto()
{
    const QByteArray bytes = writtenByQt(filledRoot(1, 1), qt4_variant);
    const QString stream = write("a.bin", bytes);
    QCOMPARE(convert(stream, path("b.bin")), 2);
    QVERIFY2(errors_.contains(QLatin1String("add --to json or --to stream")), qPrintable(errors_));
    QVERIFY(!QFile::exists(path("b.bin")));
    QCOMPARE(convert(stream, path("b.bin"), {QStringLiteral("--to"), QStringLiteral("stream")}), 0);
    QCOMPARE(read(path("b.bin")).toHex(), bytes.toHex());
    QCOMPARE(convert(stream, QStringLiteral("-")), 0);
    QVERIFY(output_.startsWith(QLatin1Char('{')));
}

void TestHostProgramStored::asksToConvertWhatIsAmbiguous()
{
    PropertyTovikIot record;
    record.host = QLatin1String("");
    record.project = record.email = record.password = record.host;
    record.aux_value = 1;
    const QString stream = write("a.bin", writtenByQt(record, {false, 12, true, false}));
    QCOMPARE(convert(stream, path("b.json")), 2);
    QVERIFY2(errors_.contains(QLatin1String("Say which it is:\n  --form record")),
             qPrintable(errors_));
    // Here the options would be about the other file.
    QCOMPARE(convert(stream, path("b.bin"), {QStringLiteral("--to"), QStringLiteral("stream")}), 2);
    QVERIFY2(errors_.contains(QLatin1String("convert IN to JSON first, with --to json and one of "
                                            "these:\n  --form record")),
             qPrintable(errors_));
    QVERIFY(!QFile::exists(path("b.bin")));
}

void TestHostProgramStored::notesWhatAConfigurationLacks()
{
    const QString config = write("c.json", R"({"service": {"project": "q", "email": "e"},
        "items": [{"name": "A", "id": "1", "type": "Bit"}]})");
    const QLatin1String no_password("gives no password: the record has an empty one");
    QCOMPARE(show(config), 0);
    QVERIFY2(errors_.contains(no_password), qPrintable(errors_));
    QVERIFY2(!errors_.contains(QLatin1String("has no groups")), qPrintable(errors_));
    QCOMPARE(convert(config, path("r.json")), 0);
    QVERIFY2(errors_.contains(no_password), qPrintable(errors_));
    QVERIFY2(errors_.contains(QLatin1String("has no groups")), qPrintable(errors_));
}

QTEST_GUILESS_MAIN(TestHostProgramStored)
#include "tst_host_program_stored.moc"
