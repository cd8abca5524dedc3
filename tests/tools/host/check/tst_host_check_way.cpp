#include "tools/host/check/judge.h"

#include <QTest>

using namespace tovik_host;
using namespace tovik_host::check;

Q_DECLARE_METATYPE(tovik_host::config::ErrorHandling)
Q_DECLARE_METATYPE(tovik_host::check::SslLibraryFacts)
Q_DECLARE_METATYPE(tovik_host::check::NameFacts)
Q_DECLARE_METATYPE(tovik_host::check::TlsFacts)
Q_DECLARE_METATYPE(tovik_host::check::CertificateFacts)
Q_DECLARE_METATYPE(tovik_host::check::Severity)

/// The way to the service: facts in, judged steps out.
class TestHostCheckWay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void errorHandling_data();
    void errorHandling();
    void sslLibrary_data();
    void sslLibrary();
    void proxy();
    void name_data();
    void name();
    void connections_data();
    void connections();
    void handshake_data();
    void handshake();
    void certificate_data();
    void certificate();
    void plainHttp_data();
    void plainHttp();
};

namespace {

const double timeout = 3;
const QDateTime now(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);

void addColumns()
{
    QTest::addColumn<Severity>("severity");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("advice");
}

/// Compares severity, a part of the text and a part of the advice; no advice is none at all.
void compare(const CheckStep& step)
{
    QFETCH(Severity, severity);
    QFETCH(QString, text);
    QFETCH(QString, advice);
    QCOMPARE(step.severity, severity);
    QVERIFY2(step.text.contains(text), qPrintable(step.text));
    QVERIFY2(step.advice.contains(advice), qPrintable(step.advice));
    QCOMPARE(step.advice.isEmpty(), advice.isEmpty());
}

CertificateFacts soundCertificate()
{
    return {QStringLiteral("cloud.example"),
            QStringLiteral("An Authority"),
            now.addDays(-10),
            now.addDays(10),
            {QStringLiteral("cloud.example")},
            QStringLiteral("RSA, 2048 bits"),
            false,
            {}};
}

} // namespace

void TestHostCheckWay::errorHandling_data()
{
    QTest::addColumn<config::ErrorHandling>("facts");
    addColumns();
    const auto row = [](const char* title, int type, bool by_time, bool by_switch, bool is_well,
                        const char* text) {
        QTest::newRow(title) << config::ErrorHandling{type, 7, 3, by_time, by_switch}
                             << (is_well ? Severity::ok : Severity::warning)
                             << QString::fromLatin1(text)
                             << (is_well ? QString() : QStringLiteral("return_time_enabled"));
    };
    row("type 0", 0, false, false, true, "every second");
    row("type 2", 2, false, false, true, "every second");
    row("type 1 by time", 1, true, true, true, "every 7 s");
    row("type 1 by the host's reads", 1, false, true, true, "when the host reads");
    row("type 1 by neither", 1, false, false, false, "never reconnects");
    row("type 3", 3, false, false, true, "when the host reads");
}

void TestHostCheckWay::errorHandling()
{
    QFETCH(config::ErrorHandling, facts);
    compare(judgeErrorHandling(facts));
}

void TestHostCheckWay::sslLibrary_data()
{
    QTest::addColumn<SslLibraryFacts>("facts");
    addColumns();
    const QString old = QStringLiteral("OpenSSL 1.1.1n");
    const QString current = QStringLiteral("OpenSSL 3.0.15");
    QTest::newRow("one that fits")
        << SslLibraryFacts{true, 0x300000f0, current, 0x30000130, QStringLiteral("OpenSSL 3.0.19")}
        << Severity::ok << QStringLiteral("OpenSSL 3.0.19 (Qt was built for OpenSSL 3.0.15)")
        << QString();
    QTest::newRow("a later one of the same series")
        << SslLibraryFacts{true, 0x300000f0, current, 0x30500000, QStringLiteral("OpenSSL 3.5.0")}
        << Severity::ok << QStringLiteral("OpenSSL 3.5.0") << QString();
    QTest::newRow("1.1.0 and 1.1.1 are one series")
        << SslLibraryFacts{true, 0x1010007f, QStringLiteral("1.1.0g"), 0x101010ef, old}
        << Severity::ok << old << QString();
    QTest::newRow("none") << SslLibraryFacts{false, 0x300000f0, current, 0, QString()}
                          << Severity::failure << QStringLiteral("there is no https")
                          << QStringLiteral("install libssl.so.3 ");
    QTest::newRow("none for a Qt of the old series")
        << SslLibraryFacts{false, 0x101010ef, old, 0, QString()} << Severity::failure
        << QStringLiteral("no OpenSSL that fits") << QStringLiteral("install libssl.so.1.1 ");
    QTest::newRow("one of another series")
        << SslLibraryFacts{true, 0x101010ef, old, 0x300000f0, current} << Severity::warning
        << QStringLiteral("OpenSSL 3.0.15 is in use, and Qt was built for OpenSSL 1.1.1n")
        << QStringLiteral("libssl.so.1.1");
}

void TestHostCheckWay::sslLibrary()
{
    QFETCH(SslLibraryFacts, facts);
    compare(judgeSslLibrary(facts));
}

void TestHostCheckWay::proxy()
{
    const CheckStep step = judgeProxy({QStringLiteral("proxy.example"), 3128, true});
    QCOMPARE(step.severity, Severity::warning);
    QVERIFY(step.text.endsWith(QLatin1String("through the HTTP proxy proxy.example:3128")));
    QVERIFY(step.advice.contains(QLatin1String("https_proxy")));
}

void TestHostCheckWay::name_data()
{
    QTest::addColumn<NameFacts>("facts");
    addColumns();
    const QString host = QStringLiteral("cloud.example");
    QTest::newRow("found")
        << NameFacts{host,           false,
                     ProbeEnd::done, {QStringLiteral("192.0.2.1"), QStringLiteral("2001:db8::1")},
                     QString(),      0.01}
        << Severity::ok << QStringLiteral("192.0.2.1, 2001:db8::1") << QString();
    QTest::newRow("an address")
        << NameFacts{QStringLiteral("192.0.2.1"),   true,      ProbeEnd::done,
                     {QStringLiteral("192.0.2.1")}, QString(), 0}
        << Severity::ok << QStringLiteral("is an address") << QString();
    QTest::newRow("not found")
        << NameFacts{host, false, ProbeEnd::refused, {}, QStringLiteral("Host not found"), 0.01}
        << Severity::failure << QStringLiteral("is not found: Host not found")
        << QStringLiteral("correct the address");
    QTest::newRow("no answer") << NameFacts{host, false, ProbeEnd::timed_out, {}, QString(), 3}
                               << Severity::failure << QStringLiteral("no answer within 3 s")
                               << QStringLiteral("name service");
}

void TestHostCheckWay::name()
{
    QFETCH(NameFacts, facts);
    const CheckStep step = judgeName(facts, timeout);
    compare(step);
    QCOMPARE(step.subject, facts.host);
    QCOMPARE(step.seconds.has_value(), !facts.is_address);
}

void TestHostCheckWay::connections_data()
{
    QTest::addColumn<int>("end");
    addColumns();
    const auto row = [](const char* title, ProbeEnd end, const char* text, const char* advice) {
        QTest::newRow(title) << int(end) << Severity::failure << QString::fromLatin1(text)
                             << QString::fromLatin1(advice);
    };
    row("refused", ProbeEnd::refused, "refused", "whether the service runs");
    row("unreachable", ProbeEnd::unreachable, "no way to this address: words", "route");
    row("timed out", ProbeEnd::timed_out, "no answer within 3 s", "firewall");
    row("in another way", ProbeEnd::failed, "failed: words", "network");
}

/// Alone it is a failure, beside an address that answers a warning.
void TestHostCheckWay::connections()
{
    QFETCH(int, end);
    const ConnectFacts bad = {QStringLiteral("2001:db8::1"), 443, ProbeEnd(end),
                              QStringLiteral("words"), 0.1};
    const ConnectFacts good = {QStringLiteral("192.0.2.1"), 443, ProbeEnd::done, QString(), 0.1};
    compare(judgeConnections({bad}, timeout).first());
    const CheckSteps both = judgeConnections({bad, good}, timeout);
    QCOMPARE(both.size(), 2);
    QCOMPARE(both.at(0).severity, Severity::warning);
    QCOMPARE(both.at(0).subject, QStringLiteral("2001:db8::1 port 443"));
    QCOMPARE(both.at(1).severity, Severity::ok);
    QVERIFY(both.at(1).advice.isEmpty());
}

void TestHostCheckWay::handshake_data()
{
    QTest::addColumn<TlsFacts>("facts");
    addColumns();
    TlsFacts good;
    good.protocol = Protocol::tls;
    good.version = QStringLiteral("TLS 1.3");
    good.cipher = QStringLiteral("SOME_CIPHER");
    QTest::newRow("done") << good << Severity::ok << QStringLiteral("TLS 1.3, SOME_CIPHER")
                          << QString();
    const auto row = [](const char* title, ProbeEnd end, Protocol protocol, const char* text,
                        const char* advice) {
        TlsFacts facts;
        facts.end = end;
        facts.protocol = protocol;
        facts.reason = QStringLiteral("words");
        QTest::newRow(title) << facts << Severity::failure << QString::fromLatin1(text)
                             << QString::fromLatin1(advice);
    };
    row("a port that speaks plain HTTP", ProbeEnd::failed, Protocol::http, "speaks plain HTTP",
        "http://");
    row("a port that waits for HTTP", ProbeEnd::timed_out, Protocol::http, "speaks plain HTTP",
        "http://");
    row("a port of something else", ProbeEnd::failed, Protocol::other, "neither TLS nor HTTP",
        "port");
    row("a port that is silent", ProbeEnd::timed_out, Protocol::unknown, "says nothing for 3 s",
        "without a time-out");
    row("a handshake that fails", ProbeEnd::failed, Protocol::unknown, "failed: words",
        "versions of TLS");
}

void TestHostCheckWay::handshake()
{
    QFETCH(TlsFacts, facts);
    compare(judgeHandshake(facts, timeout));
}

void TestHostCheckWay::certificate_data()
{
    QTest::addColumn<CertificateFacts>("facts");
    addColumns();
    const QString advice = QStringLiteral("does not verify");
    QTest::newRow("sound") << soundCertificate() << Severity::ok
                           << QStringLiteral("cloud.example, issued by An Authority, valid from "
                                             "2024-04-21 to 2024-05-11, key RSA, 2048 bits, for "
                                             "cloud.example")
                           << QString();
    CertificateFacts objected = soundCertificate();
    objected.complaints = QStringList{QStringLiteral("One"), QStringLiteral("Two")};
    QTest::newRow("with objections")
        << objected << Severity::warning << QStringLiteral("One; Two [cloud.example") << advice;
    CertificateFacts old = soundCertificate();
    old.valid_until = now.addSecs(-1);
    QTest::newRow("expired, and another objection hides it")
        << old << Severity::warning << QStringLiteral("The certificate has expired") << advice;
}

void TestHostCheckWay::certificate()
{
    QFETCH(CertificateFacts, facts);
    const CheckStep step = judgeCertificate(facts, now);
    compare(step);
    QVERIFY(step.text.count(QLatin1String("expired")) <= 1);
    QCOMPARE(step.facts.at("key").get<std::string>(), std::string("RSA, 2048 bits"));
}

void TestHostCheckWay::plainHttp_data()
{
    QTest::addColumn<TlsFacts>("facts");
    addColumns();
    const auto row = [](const char* title, ProbeEnd end, Protocol protocol, Severity severity,
                        const char* text, const char* advice) {
        TlsFacts facts;
        facts.end = end;
        facts.protocol = protocol;
        facts.reason = QStringLiteral("words");
        QTest::newRow(title) << facts << severity << QString::fromLatin1(text)
                             << QString::fromLatin1(advice);
    };
    row("plain HTTP", ProbeEnd::done, Protocol::http, Severity::warning, "not encrypted", "https");
    row("TLS", ProbeEnd::failed, Protocol::tls, Severity::failure, "speaks TLS", "https://");
    row("something else", ProbeEnd::done, Protocol::other, Severity::failure, "neither", "port");
    row("silence", ProbeEnd::timed_out, Protocol::unknown, Severity::warning, "within 3 s", "");
    row("the end of the connection", ProbeEnd::failed, Protocol::unknown, Severity::warning,
        "words", "");
}

void TestHostCheckWay::plainHttp()
{
    QFETCH(TlsFacts, facts);
    compare(judgePlainHttp(facts, timeout));
}

QTEST_GUILESS_MAIN(TestHostCheckWay)
#include "tst_host_check_way.moc"
