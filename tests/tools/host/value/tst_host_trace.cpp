#include "tools/host/value/trace.h"

#include <QDateTime>
#include <QTest>

using namespace tovik_host;

namespace {

const qint64 start = qint64(1700000000) * 1000000;

Traffic at(qint64 microseconds, Traffic::Kind kind, const QByteArray& bytes = QByteArray(),
           int code = 0, const QString& text = QString())
{
    Traffic traffic(kind, bytes, code, text);
    traffic.time = start + microseconds;
    traffic.number = kind >= Traffic::asked ? 3 : 0;
    return traffic;
}

QString moment(const char* rest)
{
    return QDateTime::fromMSecsSinceEpoch(start / 1000).toString(QStringLiteral("HH:mm:ss")) +
           QString::fromUtf8(rest);
}

QString indented(const char* rest)
{
    return QString(28, QLatin1Char(' ')) + QString::fromUtf8(rest);
}

} // namespace

/// A driver's traffic as people read it.
class TestHostTrace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exchange();
    void longFrame();
    void framesInPieces();
    void whatIsThrownAway();
    void wordsOfTheDriver();
    void request();
    void requestWithoutAnAnswer();
    void controlCharacters();
    void restOfATrace();
};

void TestHostTrace::exchange()
{
    value::TrafficText text(value::StatusOf::device);
    QCOMPARE(text.linesOf(at(123, Traffic::sent, "\x01\x03 A")),
             QStringList(moment(".000123 +0.000000 >> 01 03 20 41                                "
                                "      |.. A|")));
    QCOMPARE(text.linesOf(at(12468, Traffic::taken, "\x01")), QStringList());
    QCOMPARE(text.linesOf(at(12500, Traffic::ended)),
             QStringList({moment(".012468 +0.012345 << 01                                         "
                                 "      |.|"),
                          moment(".012500 +0.000032 == ok")}));
}

void TestHostTrace::longFrame()
{
    value::TrafficText text(value::StatusOf::device);
    const QStringList lines = text.linesOf(at(0, Traffic::sent, "0123456789abcdefgh"));
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.first().endsWith(QLatin1String("66  |0123456789abcdef|")));
    QCOMPARE(lines.last(), indented("   67 68                                            |gh|"));
}

void TestHostTrace::framesInPieces()
{
    value::TrafficText text(value::StatusOf::device);
    text.linesOf(at(0, Traffic::sent, "x"));
    text.linesOf(at(10000, Traffic::taken, "ab"));
    text.linesOf(at(14000, Traffic::taken, "c"));
    const QStringList lines = text.linesOf(at(14500, Traffic::ended));
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines.first().startsWith(moment(".010000 +0.010000 << 61 62 63 ")),
             qPrintable(lines.first()));
    QVERIFY(lines.first().endsWith(QLatin1String("|abc|  2 pieces in 4.0 ms")));
    // The next gap is that after the last piece.
    QVERIFY(lines.last().startsWith(moment(".014500 +0.000500 ==")));
}

void TestHostTrace::whatIsThrownAway()
{
    value::TrafficText text(value::StatusOf::device);
    const QStringList lines = text.linesOf(at(0, Traffic::discarded, "late"));
    QVERIFY(lines.first().contains(QLatin1String(" xx 6C 61 74 65 ")));
    QVERIFY(lines.first().endsWith(QLatin1String("thrown away")));
}

void TestHostTrace::wordsOfTheDriver()
{
    static const result_code::Words words[] = {{0x4F000001, 0x4F000001, "no such register"},
                                               {0, 0, nullptr}};
    value::TrafficText text;
    text.setStatusOf(value::StatusOf::deviceWith(words));
    QVERIFY(text.linesOf(at(0, Traffic::ended, QByteArray(), 0x4F000001))
                .first()
                .endsWith(QLatin1String("== no such register (0x4F000001)")));
    QVERIFY(text.linesOf(at(0, Traffic::ended, QByteArray(), result_code::no_answer_in_time))
                .first()
                .endsWith(QLatin1String("(0x400A0000)")));
}

void TestHostTrace::request()
{
    value::TrafficText text;
    QStringList lines;
    lines << text.linesOf(at(0, Traffic::asked, "{}", 0, QStringLiteral("POST http://h/login")));
    lines << text.linesOf(at(400, Traffic::named, QByteArray(), 0, QStringLiteral("10.0.0.7")));
    lines << text.linesOf(at(1400, Traffic::connected));
    lines << text.linesOf(at(5400, Traffic::encrypted));
    lines << text.linesOf(at(6400, Traffic::answering, QByteArray(), 1));
    lines << text.linesOf(at(6500, Traffic::answered, "{\"errorcode\":0}", 200));
    QCOMPARE(lines,
             QStringList({moment(".000000 +0.000000 #3 >> POST http://h/login"), indented("{}"),
                          moment(".000400 +0.000400 #3    name looked up: 10.0.0.7"),
                          moment(".001400 +0.001000 #3    connected"),
                          moment(".005400 +0.004000 #3    TLS handshake done"),
                          moment(".006400 +0.001000 #3    first byte, TLS session resumed"),
                          moment(".006500 +0.000100 #3 << HTTP 200 after 6.5 ms"),
                          indented("{\"errorcode\":0}")}));
}

void TestHostTrace::requestWithoutAnAnswer()
{
    value::TrafficText text;
    text.linesOf(at(0, Traffic::asked, "{}"));
    QCOMPARE(text.linesOf(at(2000, Traffic::answered, QByteArray(), 0, QStringLiteral("refused"))),
             QStringList(moment(".002000 +0.002000 #3 << no answer after 2.0 ms: refused")));
}

// What a service says must not steer the terminal.
void TestHostTrace::controlCharacters()
{
    value::TrafficText text;
    for (const QString& line : text.linesOf(at(0, Traffic::answered, "\x1b[2J\n\a", 200)))
        QVERIFY2(!line.contains(QChar(0x1b)) && !line.contains(QChar(7)), qPrintable(line));
}

void TestHostTrace::restOfATrace()
{
    value::TrafficText text;
    QCOMPARE(text.rest(), QStringList());
    text.linesOf(at(0, Traffic::taken, "x"));
    QCOMPARE(text.rest().size(), 1);
    QCOMPARE(text.rest(), QStringList());
}

QTEST_APPLESS_MAIN(TestHostTrace)
#include "tst_host_trace.moc"
