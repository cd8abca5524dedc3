#include "tests/property/records.h"

#include <QFile>
#include <QTest>

namespace {

QString utf8(const char* text)
{
    return QString::fromUtf8(text);
}

/// One line of the table in golden/README.md; the value stands beside it.
struct RecordedItem
{
    const char* name;
    const char* type;
    int length;
    QVariant value;
};

QList<RecordedItem> recordedItems()
{
    return QList<RecordedItem>{
        {"Valve open", "Bit", 1, true},
        {"Count BCD", "16Bit-BCD", 1, QVariant::fromValue<ushort>(1234)},
        {"Temp", "16Bit-INT", 1, QVariant::fromValue<short>(-2)},
        {"Level", "16Bit-UINT", 1, QVariant::fromValue<ushort>(65535)},
        {"Mask", "16Bit-HEX", 1, utf8("00fF")},
        {"Total BCD", "32Bit-BCD", 2, 12345678u},
        {"Offset", "32Bit-INT", 2, -2147483647 - 1},
        {"Energy", "32Bit-UINT", 2, 4294967295u},
        {"Serial", "32Bit-HEX", 2, QByteArray("deadbeef")},
        {"Druck \xc3\xbc", "32Bit-FLOAT", 2, QVariant::fromValue(-12.625f)},
        {"Recipe", "String", 16,
         utf8("Gr\xc3\xbc\xc3\x9f"
              "e / \"quoted\"")},
        {"Never read", "String", 8, utf8("")},
        {"Unknown kind", "Odd", 1, QVariant()},
    };
}

QList<PropertyTovikIotDataItem> itemsWithPrefix(const QString& prefix)
{
    QList<PropertyTovikIotDataItem> items;
    for (const RecordedItem& recorded : recordedItems()) {
        const int number = items.size() + 1;
        PropertyTovikIotDataItem item = itemWith(recorded.value);
        item.name = utf8(recorded.name);
        item.dataitem_id = QString::fromLatin1("%1-%2").arg(prefix).arg(number);
        item.type = utf8(recorded.type);
        item.length = recorded.length;
        item.cloud_status = number == 1 ? 1 : number == 3 ? 2 : 0;
        item.alert = number == 1;
        item.update_time = number <= 2 ? 1700000000 + number : 0;
        item.marked = number == 1;
        items.append(item);
    }
    return items;
}

PropertyTovikIotGroup recordedGroup(int number)
{
    PropertyTovikIotGroup group;
    group.group_id = QString::fromLatin1("g%1").arg(number);
    group.name = QString::fromLatin1("Group \xe4 %1").arg(number);
    group.location = number == 0 ? QString() : utf8("Hall 2");
    group.ddLocation = QString::number(number);
    group.alert = number == 1;
    group.permission = utf8(number == 1 ? "R" : "RW");
    group.marked = number == 2;
    if (number != 1)
        group.dataitems = itemsWithPrefix(group.group_id);
    return group;
}

PropertyTovikIot recordedPlant()
{
    PropertyTovikIot root;
    root.aux_value = 42;
    root.project = utf8("Plant 1");
    root.email = utf8("op@example.org");
    root.password = utf8("s3cret/\"x");
    for (int number = 0; number < 3; ++number)
        root.groups.append(recordedGroup(number));
    root.dataitems = itemsWithPrefix(utf8("d"));
    return root;
}

} // namespace

class TestRecordedStreams : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void file_data();
    void file();
};

void TestRecordedStreams::file_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<bool>("is_big");
    QTest::addColumn<bool>("is_plant");
    for (const bool is_plant : {false, true}) {
        for (const int version : {QDataStream::Qt_4_0, QDataStream::Qt_4_5, QDataStream::Qt_4_8}) {
            for (const bool is_big : {true, false}) {
                QTest::addRow("%s-v%d-%s", is_plant ? "plant" : "empty", version,
                              is_big ? "be" : "le")
                    << version << is_big << is_plant;
            }
        }
    }
}

void TestRecordedStreams::file()
{
    QFETCH(int, version);
    QFETCH(bool, is_big);
    QFETCH(bool, is_plant);
    const auto order = is_big ? QDataStream::BigEndian : QDataStream::LittleEndian;

    QFile recorded(QString::fromLatin1("%1/%2.stream")
                       .arg(QFile::decodeName(TOVIK_RECORDED_STREAMS),
                            QLatin1String(QTest::currentDataTag())));
    QVERIFY2(recorded.open(QIODevice::ReadOnly), qPrintable(recorded.fileName()));
    const QByteArray bytes = recorded.readAll();

    QDataStream reader(bytes);
    reader.setVersion(version);
    reader.setByteOrder(order);
    PropertyTovikIot root = filledRoot();
    reader >> root;
    QCOMPARE(reader.status(), QDataStream::Ok);
    QVERIFY(reader.atEnd());
    QCOMPARE(describe(root), describe(is_plant ? recordedPlant() : PropertyTovikIot()));

    QByteArray written;
    QDataStream writer(&written, QIODevice::WriteOnly);
    writer.setVersion(version);
    writer.setByteOrder(order);
    writer << root;
    QCOMPARE(written.toHex(), bytes.toHex());
}

QTEST_GUILESS_MAIN(TestRecordedStreams)
#include "tst_recorded_streams.moc"
