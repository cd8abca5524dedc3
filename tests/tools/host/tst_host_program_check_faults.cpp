#include "tests/tools/host/check_run.h"

#include <QTest>

/// The command with the faults of the simulated service.
class TestHostProgramCheckFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhatIsWrongOnTheWay_data();
    void saysWhatIsWrongOnTheWay();
    void loginRefused();
};

void TestHostProgramCheckFaults::saysWhatIsWrongOnTheWay_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("judgement");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* fault, int code, const char* step, const char* judgement,
                        const char* text) {
        QTest::newRow(fault) << latin1(fault) << code << latin1(step) << latin1(judgement)
                             << latin1(text);
    };
    row("expired", 0, "certificate", "warn", "The certificate has expired");
    row("wrong-host", 0, "certificate", "warn", "The host name did not match");
    row("no-tickets", 0, "resumption", "ok", "the service resumes no TLS session");
    row("errorcode:code=3,path=login", 1, "login", "fail", "service error 3");
    row("hang:path=login", 1, "login", "fail", "no answer within 3 s");
    row("not-json:path=login", 1, "login", "fail", "parsing JSON failed");
    row("http500-empty:path=login", 1, "login", "fail", "Internal Server Error");
    row("errorcode:code=42,path=groups", 1, "catalogue", "fail", "the host sees 0");
    row("not-object:path=items", 1, "catalogue", "fail", "no JSON object");
    row("mistyped:path=value,member=value,item=boiler-on", 1, "item", "fail",
        "the host keeps the item's first value");
    row("not-object:path=value", 1, "item", "fail", "no JSON object");
}

void TestHostProgramCheckFaults::saysWhatIsWrongOnTheWay()
{
    CheckRun run;
    QFETCH(QString, fault);
    QFETCH(QString, step);
    QFETCH(QString, judgement);
    QFETCH(QString, text);
    QVERIFY(run.startService({latin1("--fault"), fault}));
    const bool is_hanging = fault.startsWith(latin1("hang"));
    const int code = run.check({latin1("--timeout"), is_hanging ? latin1("3") : latin1("30")});
    QTEST(code, "code");
    bool is_told = false;
    for (const nlohmann::json& one : run.stepsOf(step.toLatin1().constData())) {
        is_told = is_told ||
                  (textOf(one, "judgement") == judgement && textOf(one, "text").contains(text));
    }
    QVERIFY2(is_told, qPrintable(run.host.output()));
    QCOMPARE(run.verdict().at("well").get<bool>(), code == 0);
    QVERIFY(!run.verdict().at("causes").empty());
}

void TestHostProgramCheckFaults::loginRefused()
{
    CheckRun run;
    QVERIFY(run.startService());
    run.host.useAccount(latin1("operator@example.com"), latin1("wrong"));
    QCOMPARE(run.check(), 1);
    QVERIFY(textOf(run.firstStep("login"), "text")
                .startsWith(latin1("service error 1 (by it tovik-cloud means: no account")));
    QCOMPARE(textOf(run.firstStep("catalogue"), "judgement"), latin1("not tried"));
}

QTEST_GUILESS_MAIN(TestHostProgramCheckFaults)
#include "tst_host_program_check_faults.moc"
