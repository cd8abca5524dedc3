#include "tools/host/check/judge.h"

#include "tools/host/value/host_value.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::check;

namespace {

driver::DeviceConfig deviceAt(const char* link)
{
    driver::DeviceConfig config;
    config.link = driver::parseLink(QString::fromLatin1(link), QStringLiteral("test"));
    return config;
}

const char tcp[] = "tcp:127.0.0.1:502";
const char serial[] = "serial:/dev/ttyS0,9600,8N1";

/// A read that was answered with so many bytes; none: not at all.
LinkRead readWith(int bytes, double seconds = 0, const char* problem = "")
{
    LinkRead read;
    read.item.name = QStringLiteral("4x1");
    read.item.request.station = 3;
    read.is_tried = true;
    read.has_sent = true;
    read.bytes = bytes;
    read.seconds = seconds;
    read.problem = QString::fromLatin1(problem);
    return read;
}

LinkRead untried()
{
    LinkRead read;
    read.item.name = QStringLiteral("4x1");
    return read;
}

} // namespace

Q_DECLARE_METATYPE(LinkRead)
Q_DECLARE_METATYPE(Severity)

/// What the facts of the way to a device mean.
class TestHostCheckLink : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opening();
    void settings();
    void anyAnswer_data();
    void anyAnswer();
    void station_data();
    void station();
    void item_data();
    void item();
    void times_data();
    void times();
};

void TestHostCheckLink::opening()
{
    const CheckStep open = judgeOpening(deviceAt(tcp), QString(), 0.01);
    QCOMPARE(open.severity, Severity::ok);
    QCOMPARE(open.subject, QString::fromLatin1(tcp));
    const CheckStep refused = judgeOpening(deviceAt(tcp), QStringLiteral("refused"), 0.01);
    QCOMPARE(refused.severity, Severity::failure);
    QCOMPARE(refused.text, QStringLiteral("refused"));
    QVERIFY(!refused.advice.isEmpty());
}

void TestHostCheckLink::settings()
{
    driver::DeviceConfig config = deviceAt(serial);
    config.settings.response_timeout = 700;
    const CheckStep line = judgeLineSettings(config);
    QVERIFY2(line.text.contains(QLatin1String("700 ms")), qPrintable(line.text));
    QVERIFY2(line.text.contains(QLatin1String("a hundred of them 104.2 ms")),
             qPrintable(line.text));
    config.link = driver::parseLink(QStringLiteral("serial:/dev/ttyS0,19200,7E2"), QString());
    QVERIFY(judgeLineSettings(config).text.contains(QLatin1String("a hundred of them 57.3 ms")));
    QVERIFY(!judgeLineSettings(deviceAt(tcp)).text.contains(QLatin1String("character")));
}

void TestHostCheckLink::anyAnswer_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<QVector<LinkRead>>("reads");
    QTest::addColumn<Severity>("severity");
    QTest::addColumn<QString>("in_advice");
    LinkRead unasked = readWith(0, 0, "no such address");
    unasked.has_sent = false;
    const auto row = [](const char* name, const char* link, const QVector<LinkRead>& reads,
                        Severity severity, const char* in_advice) {
        QTest::newRow(name) << QByteArray(link) << reads << severity
                            << QString::fromLatin1(in_advice);
    };
    row("some", tcp, {readWith(9), readWith(0, 0, "no answer")}, Severity::ok, "");
    row("none over TCP", tcp, {readWith(0, 0, "no answer")}, Severity::failure, "port");
    row("none on a serial line", serial, {readWith(0, 0, "no answer")}, Severity::failure,
        "speed and frame");
    row("nothing asked", tcp, {unasked}, Severity::failure, "addresses");
}

void TestHostCheckLink::anyAnswer()
{
    QFETCH(QByteArray, link);
    QFETCH(QVector<LinkRead>, reads);
    QFETCH(QString, in_advice);
    const CheckStep step = judgeAnyAnswer(deviceAt(link.constData()), reads);
    QTEST(step.severity, "severity");
    QVERIFY2(step.advice.contains(in_advice), qPrintable(step.advice));
}

void TestHostCheckLink::station_data()
{
    QTest::addColumn<QVector<LinkRead>>("reads");
    QTest::addColumn<Severity>("severity");
    QTest::addColumn<QString>("text");
    LinkRead other = readWith(9);
    other.item.request.station = 4;
    QTest::newRow("a value") << QVector<LinkRead>{readWith(9), readWith(5, 0, "refused")}
                             << Severity::ok << QStringLiteral("station 3 answers with values");
    QTest::newRow("two stations") << QVector<LinkRead>{readWith(9), other} << Severity::ok
                                  << QStringLiteral("stations 3, 4 answer with values");
    QTest::newRow("refusals only")
        << QVector<LinkRead>{readWith(5, 0, "refused")} << Severity::warning
        << QStringLiteral("station 3 answers, and with no value");
    QTest::newRow("silence") << QVector<LinkRead>{readWith(0, 0, "no answer")}
                             << Severity::not_tried << QString();
    QTest::newRow("not asked") << QVector<LinkRead>{untried()} << Severity::not_tried << QString();
}

void TestHostCheckLink::station()
{
    QFETCH(QVector<LinkRead>, reads);
    const CheckStep step = judgeStation(reads);
    QTEST(step.severity, "severity");
    QTEST(step.text, "text");
}

void TestHostCheckLink::item_data()
{
    QTest::addColumn<LinkRead>("read");
    QTest::addColumn<Severity>("severity");
    QTest::newRow("a value") << readWith(9) << Severity::ok;
    QTest::newRow("refused") << readWith(5, 0, "refused") << Severity::failure;
    QTest::newRow("not tried") << untried() << Severity::not_tried;
}

void TestHostCheckLink::item()
{
    QFETCH(LinkRead, read);
    const CheckStep step = judgeLinkItem(read);
    QTEST(step.severity, "severity");
    QCOMPARE(step.text, read.problem);
    QCOMPARE(step.subject, QStringLiteral("4x1"));
}

void TestHostCheckLink::times_data()
{
    QTest::addColumn<QVector<LinkRead>>("reads");
    QTest::addColumn<Severity>("severity");
    QTest::addColumn<QString>("in_text");
    QTest::addColumn<QString>("in_advice");
    LinkRead noisy = readWith(9, 0.010);
    noisy.stray_bytes = 4;
    QTest::newRow("far below the limit")
        << QVector<LinkRead>{readWith(9, 0.010), readWith(9, 0.030), readWith(9, 0.012)}
        << Severity::ok
        << QStringLiteral("3 answers took 10.0 ms to 30.0 ms, usually 12.0 ms, of "
                          "the 1000.0 ms")
        << QString();
    QTest::newRow("near the limit")
        << QVector<LinkRead>{readWith(9, 0.010), readWith(9, 0.600)} << Severity::warning
        << QStringLiteral("600.0 ms") << QStringLiteral("--response-timeout 1800");
    QTest::newRow("stray bytes") << QVector<LinkRead>{noisy} << Severity::warning
                                 << QStringLiteral("4 bytes came too late, or unasked")
                                 << QStringLiteral("another master");
    QTest::newRow("no answer") << QVector<LinkRead>{readWith(0)} << Severity::not_tried << QString()
                               << QString();
}

void TestHostCheckLink::times()
{
    QFETCH(QVector<LinkRead>, reads);
    QFETCH(QString, in_text);
    QFETCH(QString, in_advice);
    const CheckStep step = judgeTimes(deviceAt(tcp), reads);
    QTEST(step.severity, "severity");
    QVERIFY2(step.text.contains(in_text), qPrintable(step.text));
    QVERIFY2(step.advice.contains(in_advice), qPrintable(step.advice));
}

QTEST_APPLESS_MAIN(TestHostCheckLink)
#include "tst_host_check_link.moc"
