#include "tools/service/control/control_views.h"

#include "tools/service/faults/fault.h"

#include <QTest>

using namespace tovik_service::plant;
using namespace tovik_service::faults;
using namespace tovik_service::control;

class TestCloudFaultKinds : public QObject
{
    Q_OBJECT

private slots:
    void everyKeyIsTaken();
    void tellsDefaults_data();
    void tellsDefaults();
    void certificatesNeedTls();
};

namespace {

Json kind(const std::string& name)
{
    for (const Json& entry : faultKindsJson(true)) {
        if (entry.at("name") == name)
            return entry;
    }
    return {};
}

/// A value that every kind takes for the key.
std::string goodValue(const std::string& key)
{
    if (key == "version")
        return "1.3";
    return key == "path" ? "value" : key == "status" ? "503" : "7";
}

} // namespace

void TestCloudFaultKinds::everyKeyIsTaken()
{
    const Json kinds = faultKindsJson(true);
    QCOMPARE(kinds.size(), faultDefinitions().size());
    for (const Json& entry : kinds) {
        std::string text = entry.at("name").get<std::string>();
        for (const Json& key : entry.at("keys")) {
            const auto name = key.at("name").get<std::string>();
            text +=
                (text.find(':') == std::string::npos ? ":" : ",") + name + "=" + goodValue(name);
        }
        parseFault(text);
        QVERIFY2(text.find("seconds=7") != std::string::npos, text.c_str());
    }
}

void TestCloudFaultKinds::tellsDefaults_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("value");
    const auto row = [](const char* title, const char* name, const char* key, const char* value) {
        QTest::newRow(title) << QByteArray(name) << QByteArray(key) << QByteArray(value);
    };
    row("a slow reply", "drip", "ms", "20");
    row("a late reply", "delay", "ms", "1000");
    row("an error code", "errorcode", "code", "255");
    row("an HTTP status", "http500", "status", "500");
    row("a missing member", "missing", "member", "errorcode");
    row("all requests", "hang", "path", "all");
    row("from the first one on", "hang", "after", "0");
    row("without a limit", "hang", "count", "");
    row("once", "token-expiry", "count", "1");
    row("a version of TLS", "tls-version", "version", "1.2");
}

void TestCloudFaultKinds::tellsDefaults()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, value);
    const Json found = kind(name.toStdString());
    for (const Json& entry : found.at("keys")) {
        if (entry.at("name") == key.toStdString()) {
            QCOMPARE(QByteArray::fromStdString(entry.at("default").get<std::string>()), value);
            return;
        }
    }
    QFAIL("the kind has no such key");
}

void TestCloudFaultKinds::certificatesNeedTls()
{
    int unusable = 0;
    for (const Json& entry : faultKindsJson(false))
        unusable += entry.at("usable").get<bool>() ? 0 : 1;
    QCOMPARE(unusable, 7);
    QVERIFY(kind("expired").at("usable") == true);
}

QTEST_APPLESS_MAIN(TestCloudFaultKinds)
#include "tst_cloud_fault_kinds.moc"
