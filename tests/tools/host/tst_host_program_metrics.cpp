#include "tests/support/cloud_process.h"
#include "tests/support/host_process.h"

#include <QFile>
#include <QTest>

#include <csignal>

/// The driver's numbers in a watch, of the real driver and of one that has none.
class TestHostProgramMetrics : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofTheRealDriverAsJson();
    void ofTheRealDriverAsLines();
    void ofADriverWithout();
    void notUnlessAskedFor();

private:
    void useService(HostProcess& host, CloudProcess& cloud);
};

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const QStringList watch = {QStringLiteral("watch"), QStringLiteral("--interval"),
                           QStringLiteral("20")};
const QStringList often = {QStringLiteral("--metrics"), QStringLiteral("0.2")};

// What is shown of On. A watch that has shown no value at all ends with 1.
const QString value_as_json = QStringLiteral("\"value\":1,");
const QString value_as_line = QStringLiteral("On = 1  [");

} // namespace

void TestHostProgramMetrics::useService(HostProcess& host, CloudProcess& cloud)
{
    host.useDriver(QFile::decodeName(TOVIK_DRIVER));
    host.useAddress(latin1("https://127.0.0.1:%1").arg(cloud.port()));
    host.useAccount(latin1("operator@example.com"), latin1("tovik"));
    host.addItem(latin1("On"), latin1("boiler-on"), latin1("Bit"));
    host.addItem(latin1("Bad"), latin1("no-such-item"), latin1("Bit"));
    host.addItem(latin1("Behind"), latin1("boiler-flow"), latin1("32Bit-FLOAT"));
}

void TestHostProgramMetrics::ofTheRealDriverAsJson()
{
    CloudProcess cloud;
    QVERIFY(cloud.start());
    HostProcess host;
    useService(host, cloud);
    host.start(watch + often + QStringList{latin1("--json")});
    QVERIFY(host.waitForOutput(value_as_json));
    QVERIFY(
        host.waitForOutput(latin1("\"last_error\":{\"result\":7,\"text\":\"service error 7\"")));
    host.sendSignal(SIGINT);
    QCOMPARE(host.wait(), 0);
    nlohmann::json last;
    for (const nlohmann::json& line : host.outputJson()) {
        if (line.at("event") == "metrics")
            last = line;
    }
    QCOMPARE(last.at("cycle_count").get<int>(), 0);
    QVERIFY(last.at("cycle_seconds").is_null());
    QVERIFY(last.at("read_count").get<int>() >= 1);
    QVERIFY(last.at("reconnect_count").get<int>() >= 0);
    QCOMPARE(last.at("last_error").at("time").get<std::string>().size(), std::size_t(24));
    QVERIFY(last.at("age_seconds").at("On").get<double>() >= 0);
    QVERIFY(last.at("age_seconds").at("Bad").is_null());
    QVERIFY(last.at("age_seconds").at("Behind").is_null());
}

void TestHostProgramMetrics::ofTheRealDriverAsLines()
{
    CloudProcess cloud;
    QVERIFY(cloud.start());
    HostProcess host;
    useService(host, cloud);
    host.start(watch + often);
    QVERIFY(host.waitForOutput(value_as_line));
    QVERIFY(host.waitForOutput(latin1("metrics: no whole cycle yet, ")));
    QVERIFY(host.waitForOutput(latin1("last error: service error 7 at ")));
    QVERIFY(host.waitForOutput(latin1(", no value yet of Bad\n")));
    host.sendSignal(SIGINT);
    QCOMPARE(host.wait(), 0);
}

void TestHostProgramMetrics::ofADriverWithout()
{
    HostProcess host(latin1("older"));
    host.addItem(latin1("A"), latin1("hex:0500"), latin1("16Bit-INT"));
    QCOMPARE(host.run(watch + often + QStringList{latin1("--seconds"), latin1("1")}), 0);
    QVERIFY(!host.output().contains(latin1("metrics")));
    QCOMPARE(host.errors(), latin1("tovik-host: warning: this driver has no metrics\n"));
}

void TestHostProgramMetrics::notUnlessAskedFor()
{
    CloudProcess cloud;
    QVERIFY(cloud.start());
    HostProcess host;
    useService(host, cloud);
    host.start(watch + QStringList{latin1("--json")});
    QVERIFY(host.waitForOutput(value_as_json));
    QVERIFY(host.waitForOutput(latin1("service error 7")));
    host.sendSignal(SIGINT);
    QCOMPARE(host.wait(), 0);
    QVERIFY(!host.output().contains(latin1("metrics")));
}

QTEST_GUILESS_MAIN(TestHostProgramMetrics)
#include "tst_host_program_metrics.moc"
