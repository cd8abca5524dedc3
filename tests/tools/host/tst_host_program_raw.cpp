#include "tests/tools/host/device_run.h"

#include <QTest>

#include <csignal>

class TestHostProgramRaw : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsTheAnswer_data();
    void printsTheAnswer();
    void worksOnASerialLine();
    void printsJson();
    void saysThatNothingCame();
    void needsMoreThanTheLibrarysDefault();
    void asksTheDriverWhetherItIsSupported();
    void endsOnSignal();
};

void TestHostProgramRaw::printsTheAnswer_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("several arguments") << words("raw 78 01 FF 02 0a");
    QTest::newRow("one argument") << words("raw 7801FF020A");
    QTest::newRow("one argument with blanks")
        << QStringList{QStringLiteral("raw"), QStringLiteral("78 01 FF 02 0A")};
}

void TestHostProgramRaw::printsTheAnswer()
{
    QFETCH(QStringList, arguments);
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, arguments + words("--timeout 20")), 0);
    QCOMPARE(host.output(), QStringLiteral("01 ff 02\n"));
    QCOMPARE(host.errors(), QString());
}

void TestHostProgramRaw::worksOnASerialLine()
{
    LineDevice device(ScriptedDevice::Line::Pty);
    HostProcess host;
    QCOMPARE(runOn(host, device, words("raw 78 01 FF 02 0A --timeout 20")), 0);
    QCOMPARE(host.output(), QStringLiteral("01 ff 02\n"));
}

void TestHostProgramRaw::printsJson()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("raw 78 01 0A --json --timeout 20")), 0);
    nlohmann::json line = host.outputJson().first();
    QCOMPARE(line.at("time").get<std::string>().size(), std::size_t(24));
    line.erase("time");
    QCOMPARE(line.dump(),
             std::string("{\"request\":\"78010a\",\"response\":\"01\",\"status\":\"0\","
                         "\"status_text\":\"ok\",\"version\":1}"));
    QCOMPARE(runOn(host, device, words("raw 78 01 --json --timeout 0.1")), 1);
    const nlohmann::json failed = host.outputJson().first();
    QCOMPARE(failed.at("response").get<std::string>(), std::string());
    QCOMPARE(failed.at("status").get<std::string>(), std::string("0x400A0000"));
    QVERIFY(failed.contains("problem"));
}

void TestHostProgramRaw::saysThatNothingCame()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("raw 01 02 --timeout 0.2")), 1);
    QCOMPARE(host.output(), QString());
    QCOMPARE(host.errors(),
             QStringLiteral("tovik-host: raw: no complete answer within the budget of 200 ms; is "
                            "the frame complete, with its checksum? A slow device needs a longer "
                            "--response-timeout\n"));
}

void TestHostProgramRaw::needsMoreThanTheLibrarysDefault()
{
    LineDevice device;
    HostProcess host;
    QCOMPARE(runOn(host, device, words("raw 78 01 0A --response-timeout 10 --timeout 20")), 1);
    const QString errors = host.errors();
    QVERIFY2(errors.contains(QLatin1String("within the budget of 10 ms")), qPrintable(errors));
}

void TestHostProgramRaw::asksTheDriverWhetherItIsSupported()
{
    LineDevice device;
    HostProcess host;
    const QStringList arguments = words("raw 78 01 0A --link-param-a 1 --timeout 20");
    QCOMPARE(runOn(host, device, arguments), 1);
    QCOMPARE(host.errors(),
             QStringLiteral("tovik-host: raw: the driver says that it does not support the "
                            "transparent mode; --force tries all the same\n"));
    QVERIFY(device.lines().isEmpty());
    QCOMPARE(runOn(host, device, arguments + words("--force")), 0);
    QCOMPARE(host.output(), QStringLiteral("01\n"));
}

void TestHostProgramRaw::endsOnSignal()
{
    LineDevice device;
    HostProcess host;
    // Complete lines without an answer; the transparent mode has no flag that stops it.
    host.startBare(onDevice(words("raw 0A --response-timeout 1000"), device));
    QTRY_VERIFY_WITH_TIMEOUT(!device.lines().isEmpty(), 50000);
    host.sendSignal(SIGINT);
    QCOMPARE(waitForEnd(host), 1);
    // On a machine that is slow enough, the budget has been used up before the signal.
    QVERIFY(host.errors().startsWith(QLatin1String("tovik-host: raw: ")));
}

QTEST_GUILESS_MAIN(TestHostProgramRaw)
#include "tst_host_program_raw.moc"
