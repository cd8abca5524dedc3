#include "tests/framework/driver_bench.h"
#include "tests/support/log_recorder.h"

#include <QTest>

#include <random>

namespace {

const unsigned seed = 20210607;
const int requests = 200; // on each line

using Random = std::mt19937;

int upTo(Random* random, int most)
{
    return int((*random)() % unsigned(most + 1));
}

/// The answer in random pieces with random pauses; one in so many is damaged in some way.
QList<DeviceStep> anyReply(Random* random, QByteArray answer)
{
    QList<DeviceStep> steps;
    bool hangs_up = false;
    switch (upTo(random, 15)) {
    case 0:
        return steps; // lost
    case 1:
        return {{answer, 0, false, true}}; // sent at some later time
    case 2:
        answer.chop(1 + upTo(random, answer.size() - 1));
        break;
    case 3:
        answer += answer;
        break;
    case 4:
        answer[upTo(random, 2)] = '\xee';
        break;
    case 5:
        answer.chop(1);
        hangs_up = true;
        break;
    default:
        break;
    }
    for (int at = 0; at < answer.size();) {
        const int size = 1 + upTo(random, answer.size() - at - 1);
        const int pause = upTo(random, 9) == 0 ? upTo(random, 16) : 0;
        at += size;
        steps.append({answer.mid(at - size, size), pause, hangs_up && at == answer.size()});
    }
    return steps;
}

const QStringList failures{QLatin1String("0x400a0000"), QLatin1String("0x20010003"),
                           QLatin1String("0x30000001")};

} // namespace

/// Whatever a device does, every request gets one answer, and no wrong values.
class TestDriverBasicProperty : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneAnswerAndNoWrongValues_data();
    void oneAnswerAndNoWrongValues();

private:
    /// Empty if all is well with one random request, else what is not.
    QString oneRequest(DriverBench* bench, Random* random);
};

void TestDriverBasicProperty::oneAnswerAndNoWrongValues_data()
{
    QTest::addColumn<int>("line");
    QTest::newRow("TCP") << 0;
    QTest::newRow("serial") << 1;
}

QString TestDriverBasicProperty::oneRequest(DriverBench* bench, Random* random)
{
    bench->driver->retry_count_ = upTo(random, 2);
    const int size = 1 + upTo(random, 19);
    const int kind = upTo(random, 9);
    QStringList answers;
    if (kind == 0)
        answers = bench->transparent("Q\x7f\x7f" + QByteArray(1, char(size)));
    else if (kind <= 3)
        answers = bench->write(QByteArray(size, 'w'));
    else
        answers = bench->read(size);

    if (answers.size() != 1)
        return QString::fromLatin1("%1 answers").arg(answers.size());
    const QStringList parts = answers.first().split(QLatin1Char(' '));
    if (kind == 0)
        return QString(); // with nobody to check the frame, all bytes are an answer
    QString values = QLatin1String("-");
    if (kind <= 3)
        values = bytesText(QByteArray(size, 'w'));
    else if (parts.at(3) == QLatin1String("0x0"))
        values = bytesText(TestDevice::valuesOf(bench->driver->number(), size));
    if (parts.at(2) != values)
        return QLatin1String("wrong values: ") + answers.first();
    if (parts.at(3) != QLatin1String("0x0") && !failures.contains(parts.at(3)))
        return QLatin1String("unknown code: ") + answers.first();
    return bench->lockIsFree() ? QString() : QString::fromLatin1("the lock is held");
}

void TestDriverBasicProperty::oneAnswerAndNoWrongValues()
{
    QFETCH(int, line);
    LogRecorder log; // the lines are many, and not what this is about
    DriverBench bench(lineOf(line));
    QVERIFY(bench.connectLink());
    Random devices_random(seed);
    Random random(seed + 1);
    bench.device.setBehaviour([&](const QByteArray& request) {
        return anyReply(&devices_random, TestDevice::answerTo(request));
    });
    bench.driver->time_limit = 8;
    bench.driver->response_timeout_ = 30;
    for (int i = 0; i < requests; ++i) {
        if (bench.device.hasHungUp()) {
            bench.device.comeBack();
            QVERIFY(bench.connectLink());
        }
        if (upTo(&random, 9) == 0)
            bench.device.release();
        const QString problem = oneRequest(&bench, &random);
        QVERIFY2(problem.isEmpty(),
                 qPrintable(
                     QString::fromLatin1("seed %1, request %2: %3").arg(seed).arg(i).arg(problem)));
    }

    // Once the device behaves again, all is well.
    bench.device.behave(QStringList(QLatin1String("answers")));
    bench.device.hangUp();
    bench.device.comeBack();
    QVERIFY(bench.connectLink());
    bench.driver->time_limit = 30000;
    bench.driver->retry_count_ = 0;
    const QStringList answers = bench.read(4);
    const QByteArray values = TestDevice::valuesOf(bench.driver->number(), 4);
    QCOMPARE(answers, QStringList(QString::fromLatin1("unit link %1 0x0").arg(bytesText(values))));
}

QTEST_GUILESS_MAIN(TestDriverBasicProperty)
#include "tst_driver_basic_property.moc"
