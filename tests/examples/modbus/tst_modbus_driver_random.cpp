#include "examples/modbus/modbus_status.h"
#include "tests/examples/modbus/modbus_bench.h"

#include <QTest>

#include <random>

using namespace modbus;

// A device that does anything at all, by a fixed seed: each request gets exactly one answer, and an
// answer that says success carries the value that the device gave to this very request.

namespace {

enum Trick
{
    AnswerWell,
    AnswerInParts,
    SayNothing,
    AnswerLater, // after the next request or between two
    Cut,
    DamageByte,
    NoiseBefore,
    NoiseBehind,
    Twice,
    RefuseIt,
    Close,
    Tricks
};

/// The device's part. It works in the device's thread, and tells nobody but by its bytes.
class Prankster
{
public:
    Prankster(ModbusBench& bench, unsigned seed) : bench_(bench), random_(seed) {}

    QList<DeviceStep> serve(const QByteArray& request)
    {
        ++count;
        const QByteArray value =
            QByteArray::fromHex(QByteArray::number(count, 16).rightJustified(8, '0'));
        const QByteArray good = bench_.frame(request, hex("0304") + value);
        const bool tcp = bench_.transport == Transport::Tcp;
        // Closing a pseudo terminal hangs up for good.
        QList<DeviceStep> steps = play(Trick(below(tcp ? Tricks : Close)), request, good);
        if (!late_.isEmpty() && tcp && below(2) == 0) {
            steps.prepend({late_, 0, false});
            late_.clear();
        }
        return steps;
    }

    /// What is to be sent between two requests.
    QByteArray takeLate()
    {
        const QByteArray late = late_;
        late_.clear();
        return late;
    }

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

    int count = 0;

private:
    QByteArray noise()
    {
        QByteArray bytes(1 + below(30), '\0');
        for (char& byte : bytes)
            byte = char(below(256));
        return bytes;
    }

    /// With one byte changed: any on a line, one of the header over TCP, where nothing protects the
    /// value.
    QByteArray damaged(QByteArray bytes)
    {
        const int at = below(bench_.transport == Transport::Tcp ? 9 : bytes.size());
        bytes[at] = char(bytes.at(at) ^ 0x55);
        return bytes;
    }

    QList<DeviceStep> play(Trick trick, const QByteArray& request, const QByteArray& good)
    {
        switch (trick) {
        case AnswerInParts:
            return parts(good);
        case SayNothing:
            return {};
        case AnswerLater:
            late_ += good;
            return {};
        case Cut:
            return {{good.left(below(good.size())), 0, false}};
        case DamageByte:
            return {{damaged(good), 0, false}};
        case NoiseBefore:
            return {{noise() + good, 0, false}};
        case NoiseBehind:
            return {{good + noise(), 0, false}};
        case Twice:
            return {{good + good, 0, false}};
        case RefuseIt:
            return {{bench_.frame(request, hex("8306")), 0, false}};
        case Close:
            return {{good.left(below(good.size() + 1)), 0, true}};
        default:
            return {{good, 0, false}};
        }
    }

    QList<DeviceStep> parts(const QByteArray& bytes)
    {
        QList<DeviceStep> steps;
        for (int at = 0; at < bytes.size();) {
            const int size = 1 + below(5);
            steps.append({bytes.mid(at, size), below(3), false});
            at += size;
        }
        return steps;
    }

    ModbusBench& bench_;
    std::mt19937 random_;
    QByteArray late_;
};

} // namespace

class TestModbusDriverRandom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exactlyOneAnswer_data();
    void exactlyOneAnswer();
};

void TestModbusDriverRandom::exactlyOneAnswer_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<int>("requests");
    QTest::addColumn<int>("response_timeout");
    for (int seed = 1; seed <= 3; ++seed)
        QTest::addRow("TCP, seed %d", seed) << Transport::Tcp << 120 << 25;
    for (int seed = 1; seed <= 2; ++seed)
        QTest::addRow("RTU, seed %d", seed) << Transport::Rtu << 30 << 50;
}

void TestModbusDriverRandom::exactlyOneAnswer()
{
    QFETCH(Transport, transport);
    QFETCH(int, requests);
    QFETCH(int, response_timeout);
    ModbusBench bench(transport);
    bench.setResponseTimeout(response_timeout);
    Prankster prankster(bench, unsigned(qHash(QByteArray(QTest::currentDataTag()), 0U)));
    bench.device.setBehaviour([&](const QByteArray& r) { return prankster.serve(r); });
    int served = 0;
    for (int i = 0; i < requests; ++i) {
        if (!bench.isLinkUp())
            QVERIFY(bench.connectLink());
        bench.setPaced(i % 2 == 0);
        const Got got = bench.host->read(readOf("4x1", 4));
        bench.waitUntilServed();
        QCOMPARE(got.answers, 1);
        QVERIFY(got.status != -1);
        if (got.status == Ok) {
            ++served;
            const QByteArray& b = got.data;
            // The high word comes first, each word least significant byte first.
            const int value =
                byteAt(b, 1) << 24 | byteAt(b, 0) << 16 | byteAt(b, 3) << 8 | byteAt(b, 2);
            QCOMPARE(value, prankster.count);
        } else {
            QVERIFY(got.data.isEmpty());
        }
        const QByteArray late = prankster.takeLate();
        if (transport == Transport::Rtu && !late.isEmpty())
            bench.device.send(late);
    }
    // The device answered well often enough, so the driver did, too.
    QVERIFY2(served > requests / 10, qPrintable(QString::number(served)));
}

QTEST_GUILESS_MAIN(TestModbusDriverRandom)
#include "tst_modbus_driver_random.moc"
