#include "tests/property/records.h"
#include "tests/property/stream_bytes.h"

#include <QProcess>
#include <QTest>

#include <cstdio>

// What is registered stays registered for the life of a process. Every case is therefore a run of
// this program of its own: `tst_stream_registration --case NAME` prints what it saw.

namespace {

template <typename T>
QByteArray stored(const T& record)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << record;
    return bytes;
}

template <typename T>
T readFrom(const QByteArray& bytes)
{
    T record;
    QDataStream stream(bytes);
    stream >> record;
    return record;
}

void writeItem()
{
    stored(PropertyTovikIotDataItem());
}

void readItem()
{
    readFrom<PropertyTovikIotDataItem>(QByteArray());
}

void writeGroup()
{
    stored(PropertyTovikIotGroup());
}

void readGroup()
{
    readFrom<PropertyTovikIotGroup>(QByteArray());
}

void streamEmptyRoot()
{
    readFrom<PropertyTovikIot>(stored(PropertyTovikIot()));
}

/// A root whose bytes no stream operator has written.
void readRoot(int groups, int items)
{
    readFrom<PropertyTovikIot>(StreamBytes(StreamFormat()).root(filledRoot(groups, items)).bytes());
}

void everythingThreeTimes()
{
    for (int i = 0; i < 3; ++i) {
        writeItem();
        readItem();
        writeGroup();
        readGroup();
    }
}

struct Case
{
    const char* name;
    void (*run)();
    bool registers;
};

const Case cases[] = {
    {"program start", [] {}, false},
    {"a record made and copied", [] { PropertyTovikIot(filledRoot()).Initial(); }, false},
    {"a root without lists written and read", streamEmptyRoot, false},
    {"an item written", writeItem, true},
    {"an item read", readItem, true},
    {"a group written", writeGroup, true},
    {"a group read", readGroup, true},
    {"a root with a group written", [] { stored(filledRoot(1, 0)); }, true},
    {"a root with a served item written", [] { stored(filledRoot(0, 1)); }, true},
    {"a root without lists read", [] { readRoot(0, 0); }, false},
    {"a root with a group read", [] { readRoot(1, 0); }, true},
    {"a root with a served item read", [] { readRoot(0, 1); }, true},
    {"all of them again and again", everythingThreeTimes, true},
};

/// Whether a variant with a configuration comes back from a stream with all it held.
bool survivesInAVariant()
{
    const QVariant variant = QVariant::fromValue(filledRoot());
    const QVariant read = readFrom<QVariant>(stored(variant));
    return read.userType() == variant.userType() &&
           describe(read.value<PropertyTovikIot>()) == describe(filledRoot());
}

int runCase(const char* name)
{
    for (const Case& one : cases) {
        if (qstrcmp(one.name, name) != 0)
            continue;
        one.run();
        const bool is_known = QMetaType::type("PropertyTovikIot") != QMetaType::UnknownType;
        const PropertyTovikIot root = filledRoot(0, 0);
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        // This names the type itself, but gives it no stream operators.
        const bool is_saved = QMetaType::save(stream, qMetaTypeId<PropertyTovikIot>(), &root);
        const bool is_whole = is_saved && bytes == stored(root) && survivesInAVariant();
        std::printf("known %d saved %d in a variant %d\n", is_known, is_saved, is_whole);
        return 0;
    }
    return 2;
}

} // namespace

class TestStreamRegistration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void processThatOnlySaw_data();
    void processThatOnlySaw();
};

void TestStreamRegistration::processThatOnlySaw_data()
{
    QTest::addColumn<QByteArray>("report");
    for (const Case& one : cases) {
        QTest::newRow(one.name) << QByteArray(one.registers ? "known 1 saved 1 in a variant 1\n"
                                                            : "known 0 saved 0 in a variant 0\n");
    }
}

void TestStreamRegistration::processThatOnlySaw()
{
    QFETCH(QByteArray, report);
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(),
                  {QLatin1String("--case"), QLatin1String(QTest::currentDataTag())});
    QVERIFY2(process.waitForFinished(60000), qPrintable(process.errorString()));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardOutput(), report);
}

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--case") == 0)
        return runCase(argv[2]);
    QCoreApplication application(argc, argv);
    TestStreamRegistration test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_stream_registration.moc"
