#include "framework/protocol_basic.h"
#include "framework/result_code.h"
#include "tests/support/log_recorder.h"

#include <QTest>

#include <algorithm>
#include <random>

namespace {

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

/// The elements of \a data as they stand in a frame, worked out another way than by the helpers.
QByteArray framed(QByteArray data, int size, int order, int ascii)
{
    for (int at = 0; order != 1 && at + size <= data.size(); at += size)
        std::reverse(data.begin() + at, data.begin() + at + size);
    return ascii ? data.toHex().toUpper() : data;
}

const QString invalid = QLatin1String("composeDataArray: Invalid parameter!");

} // namespace

/// Arrays of elements, into frames and out of them.
class TestProtocolBasicArrays : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrips_data();
    void roundTrips();
    void sourceInTheArrayItself_data();
    void sourceInTheArrayItself();
    void unpackedInPlace();
    void oddSizes();
    void composeRefusesNothing();
    void composeRefusesTooMuch();
    void addArrayFailures();
    void extractArrayFailures();
    void extractArrayOutOfItself();
    void cutElements();
    void extractDataAreaFailures();
    void extractDataAreaStaysInside();
    void extractDataAreaDetaches();
};

void TestProtocolBasicArrays::roundTrips_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("order");
    QTest::addColumn<int>("ascii");
    for (const int size : {1, 2, 4}) {
        for (const int order : {0, 1, 2}) {
            for (const int ascii : {0, 1, -3}) {
                QTest::addRow("size %d, order %d, ascii %d", size, order, ascii)
                    << size << order << ascii;
            }
        }
    }
}

void TestProtocolBasicArrays::roundTrips()
{
    QFETCH(int, size);
    QFETCH(int, order);
    QFETCH(int, ascii);
    std::mt19937 random(quint32(6103 + size));
    ProtocolBasic protocol;
    for (int count = 0; count <= 150; ++count) {
        QByteArray data(count * size, '\0');
        for (char& byte : data)
            byte = char(random() % 256);
        const QByteArray expected = framed(data, size, order, ascii);

        QByteArray composed("head");
        QCOMPARE(protocol.composeDataArea(&composed, data.data(), size, count, order, ascii), 0);
        QCOMPARE(composed, "head" + expected);
        QByteArray added("head");
        QVERIFY(ProtocolBasic::addArray(added, data.constData(), data.size(), size, order, ascii));
        QCOMPARE(added, "head" + expected);

        QByteArray extracted("old");
        QVERIFY(ProtocolBasic::extractArray(extracted, expected.constData(), expected.size(), size,
                                            order, ascii));
        QCOMPARE(extracted, data);
        QByteArray area(data.size() + 1, '\x55');
        QCOMPARE(protocol.extractDataArea(area.data(), &composed, 4, expected.size(), size, order,
                                          ascii),
                 0);
        QCOMPARE(area, data + '\x55');
    }
}

void TestProtocolBasicArrays::sourceInTheArrayItself_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("bytes") << 1;
    QTest::newRow("words") << 2;
    QTest::newRow("an odd size") << 3;
    QTest::newRow("long words") << 4;
}

/// Appending moves the array; the source must not be left behind.
void TestProtocolBasicArrays::sourceInTheArrayItself()
{
    QFETCH(int, size);
    ProtocolBasic protocol;
    const QByteArray bytes(1200, '\x5A');
    for (int from : {0, 12}) {
        QByteArray out = bytes + "";
        out.squeeze();
        const int count = (bytes.size() - from) / size;
        protocol.composeDataArea(&out, out.data() + from, size, count, 1, 1);
        QByteArray expected = bytes;
        for (int i = 0; i < count; ++i)
            expected += size == 3 ? QByteArray("5A0000") : QByteArray("5A").repeated(size);
        QCOMPARE(out, expected);
    }
}

void TestProtocolBasicArrays::unpackedInPlace()
{
    ProtocolBasic protocol;
    for (int order : {0, 1}) {
        QByteArray data(600, '\0');
        for (int i = 0; i < data.size(); ++i)
            data[i] = char(i % 251);
        QByteArray frame = framed(data, 2, order, 1);
        char* bytes = frame.data();
        QCOMPARE(protocol.extractDataArea(bytes, &frame, 0, frame.size(), 2, order, 1), 0);
        QCOMPARE(frame.left(data.size()), data);
    }
}

void TestProtocolBasicArrays::oddSizes()
{
    ProtocolBasic protocol;
    QByteArray source = hex("a1b2c3d4e5f6");
    QByteArray out;
    QCOMPARE(protocol.composeDataArea(&out, source.data(), 3, 2, 1, 0), 0);
    QCOMPARE(out, hex("a10000d40000"));
    out.clear();
    QCOMPARE(protocol.composeDataArea(&out, source.data(), 6, 1, 0, 0), 0);
    QCOMPARE(out, hex("0000000000a1"));
    // Three bytes are assembled and copied as three.
    QByteArray area(4, '\x55');
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 0, 3, 3, 0, 0), 0);
    QCOMPARE(area, hex("c3b2a155"));
}

void TestProtocolBasicArrays::composeRefusesNothing()
{
    ProtocolBasic protocol;
    QByteArray source = hex("a1b2c3d4");
    QByteArray out("x");
    QCOMPARE(protocol.composeDataArea(&out, source.data(), 2, 0, 1, 0), 0);
    QCOMPARE(protocol.composeDataArea(&out, source.data(), 2, -5, 1, 0), 0);
    QCOMPARE(protocol.composeDataArea(&out, source.data(), 0, 2, 1, 0), 0);
    QCOMPARE(protocol.composeDataArea(&out, source.data(), -2, 2, 1, 0), 0);
    QCOMPARE(protocol.composeDataArea(&out, nullptr, 2, 2, 1, 0), 0);
    QCOMPARE(protocol.composeDataArea(nullptr, source.data(), 2, 2, 1, 0), 0);
    QCOMPARE(out, QByteArray("x"));
}

// One element more than an array can hold in characters.
void TestProtocolBasicArrays::composeRefusesTooMuch()
{
    ProtocolBasic protocol;
    QByteArray source = hex("a1b2c3d4");
    QByteArray out("x");
    QCOMPARE(protocol.composeDataArea(&out, source.data(), 4, 268435456, 1, 0), 0);
    QCOMPARE(protocol.composeDataArea(&out, source.data(), 1, 1073741824, 1, 1), 0);
    QCOMPARE(out, QByteArray("x"));
}

void TestProtocolBasicArrays::addArrayFailures()
{
    const QByteArray source = hex("a1b2c3d4e5f6");
    LogRecorder log;
    QByteArray out("x");
    for (const int size : {0, 5, -1}) {
        QVERIFY(!ProtocolBasic::addArray(out, source.constData(), 4, size, 1, 0));
        QCOMPARE(log.take(), QStringList{invalid});
    }
    QVERIFY(!ProtocolBasic::addArray(out, source.constData(), 0, 5, 1, 0));
    QCOMPARE(log.take(), QStringList{invalid});
    QVERIFY(!ProtocolBasic::addArray(out, nullptr, 4, 2, 1, 0));
    QCOMPARE(log.take(), QStringList{invalid});
    for (const int len : {1, 6})
        QVERIFY(!ProtocolBasic::addArray(out, source.constData(), len, 3, 1, 0));
    QVERIFY(ProtocolBasic::addArray(out, source.constData(), 0, 3, 1, 0));
    QVERIFY(ProtocolBasic::addArray(out, source.constData(), -6, 2, 1, 0));
    QCOMPARE(out, QByteArray("x"));
    QVERIFY(log.lines().isEmpty());
}

void TestProtocolBasicArrays::extractArrayFailures()
{
    const QByteArray source = hex("a1b2c3d4e5f6");
    LogRecorder log;
    for (const int size : {0, 5, -1}) {
        QByteArray out("x");
        QVERIFY(!ProtocolBasic::extractArray(out, source.constData(), 4, size, 1, 0));
        QVERIFY(out.isEmpty());
        QCOMPARE(log.take(), QStringList{invalid});
    }
    QByteArray out("x");
    QVERIFY(!ProtocolBasic::extractArray(out, nullptr, 4, 2, 1, 0));
    QVERIFY(out.isEmpty());
    QCOMPARE(log.take(), QStringList{invalid});
    for (const int len : {1, 6}) {
        out = "x";
        QVERIFY(!ProtocolBasic::extractArray(out, source.constData(), len, 3, 1, 0));
        QVERIFY(out.isEmpty());
    }
    for (const int size : {2, 3}) {
        for (const int len : {-1, 0}) {
            out = "x";
            QVERIFY(ProtocolBasic::extractArray(out, source.constData(), len, size, 1, 0));
            QVERIFY(out.isEmpty());
        }
    }
    QVERIFY(log.lines().isEmpty());
}

void TestProtocolBasicArrays::extractArrayOutOfItself()
{
    QByteArray frame("12345678");
    QVERIFY(ProtocolBasic::extractArray(frame, frame.constData(), frame.size(), 2, 0, 1));
    QCOMPARE(frame, hex("34127856"));
}

/// The length of the output is that of whole elements all the same; no byte beyond the end is read.
void TestProtocolBasicArrays::cutElements()
{
    const QByteArray source = hex("a1b2c3");
    QByteArray out;
    QVERIFY(ProtocolBasic::addArray(out, source.constData(), 3, 2, 1, 0));
    QCOMPARE(out, hex("a1b2c3"));
    QVERIFY(ProtocolBasic::extractArray(out, source.constData(), 3, 2, 1, 0));
    QCOMPARE(out, hex("a1b2c3"));
    const QByteArray seven = hex("a1b2c3d4e5f607");
    for (const int order : {0, 1}) {
        const QByteArray expected = order ? seven : hex("d4c3b2a10007f6");
        out.clear();
        QVERIFY(ProtocolBasic::addArray(out, seven.constData(), 7, 4, order, 0));
        QCOMPARE(out, expected);
        QVERIFY(ProtocolBasic::extractArray(out, seven.constData(), 7, 4, order, 0));
        QCOMPARE(out, expected);
        const QByteArray characters = seven.toHex();
        QVERIFY(ProtocolBasic::extractArray(out, characters.constData(), 14, 4, order, 1));
        QCOMPARE(out, expected);
    }
    char room[] = "xxxxxxxx";
    QByteArray frame(seven);
    QCOMPARE(ProtocolBasic().extractDataArea(room, &frame, 0, 7, 4, 1, 0), 0);
    QCOMPARE(QByteArray(room, 8), seven + 'x');
    const QByteArray text("A1B2C");
    QVERIFY(ProtocolBasic::extractArray(out, text.constData(), 5, 1, 1, 1));
    QCOMPARE(out, hex("a1b2"));
}

void TestProtocolBasicArrays::extractDataAreaFailures()
{
    ProtocolBasic protocol;
    QByteArray source = hex("a1b2c3d4");
    QByteArray area(4, '\x55');
    LogRecorder log;
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 0, 4, 5, 1, 0),
             result_code::not_supported);
    QCOMPARE(log.take(),
             QStringList{QLatin1String("Warning: Not support byte group operation of  5")});
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 0, 0, 2, 1, 0), 0);
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 0, -4, 2, 1, 0), 0);
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 0, 4, 0, 1, 0), 0);
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 0, 4, -2, 1, 0), 0);
    QCOMPARE(protocol.extractDataArea(nullptr, &source, 0, 4, 2, 1, 0), result_code::not_supported);
    QCOMPARE(protocol.extractDataArea(area.data(), nullptr, 0, 4, 2, 1, 0),
             result_code::not_supported);
    QCOMPARE(protocol.extractDataArea(area.data(), &source, -1, 4, 2, 1, 0),
             result_code::not_supported);
    QCOMPARE(area, QByteArray(4, '\x55'));
    QVERIFY(log.lines().isEmpty());
}

void TestProtocolBasicArrays::extractDataAreaStaysInside()
{
    ProtocolBasic protocol;
    QByteArray source = hex("a1b2c3d4");
    QByteArray area(8, '\x55');
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 2, 8, 2, 1, 0), 0);
    QCOMPARE(area, hex("c3d4555555555555"));
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 100, 8, 2, 1, 0), 0);
    QCOMPARE(area, hex("c3d4555555555555"));
}

void TestProtocolBasicArrays::extractDataAreaDetaches()
{
    ProtocolBasic protocol;
    QByteArray source = hex("a1b2c3d4");
    const QByteArray shared = source;
    QByteArray area(4, '\0');
    QCOMPARE(protocol.extractDataArea(area.data(), &source, 0, 4, 4, 1, 0), 0);
    QVERIFY(source.isDetached());
    QCOMPARE(source, shared);
}

QTEST_APPLESS_MAIN(TestProtocolBasicArrays)
#include "tst_protocol_basic_arrays.moc"
