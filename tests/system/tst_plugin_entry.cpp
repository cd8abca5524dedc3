#include "tests/support/cloud_process.h"
#include "tests/support/log_recorder.h"
#include "tests/system/plugin.h"

#include <QNetworkProxy>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

/// The entry points of the built library.
class TestPluginEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutALink();
    void versionTwice();
    void withALink();
    void missingKeys();
};

/// First: nothing may be registered before a driver with a link has been made.
void TestPluginEntry::withoutALink()
{
    LogRecorder log;
    PluginDriver host;
    host.driver = plugin::create(nullptr);
    QCOMPARE(log.take(),
             (QStringList{latin1("Create library - TOVIK IoT"), latin1("No ethernet!")}));
    QCOMPARE(QByteArray(host.driver->metaObject()->className()), QByteArray("DrvTovikIot"));
    host.attach(host.driver.get());
    QCOMPARE(host.read("a").status, -1);
    QCOMPARE(host.write("a", QByteArray("1")).status, -1);
    QCOMPARE(QMetaType::type("QSharedPointer<AddrData>"), int(QMetaType::UnknownType));
    QVERIFY(!host.driver->IsTransparentModeSupported());
    QSignalSpy answers(host.driver.get(), SIGNAL(SigTransparentResponse(QByteArray, int)));
    host.driver->RunTransparentRequest(QByteArray("x"));
    QCOMPARE(answers.size(), 0);
    QVERIFY(log.lines().isEmpty());
}

void TestPluginEntry::versionTwice()
{
    LogRecorder log;
    QCOMPARE(plugin::version(), 67155U);
    QCOMPARE(plugin::version(), 0x10653U);
    const QString line = latin1("\"[Driver Version] v1.6.83\"");
    QCOMPARE(log.lines(), (QStringList{line, line}));
}

void TestPluginEntry::withALink()
{
    CloudProcess cloud;
    QVERIFY(cloud.start());
    LogRecorder log;
    PluginDriver host;
    host.use(cloud);
    host.start();
    const QStringList lines = log.lines();
    QCOMPARE(lines.mid(0, 3),
             (QStringList{latin1("Create library - TOVIK IoT"), latin1("Have ethernet!"),
                          latin1("[DrvTovikIot] Initial")}));
    QTRY_VERIFY(log.contains("[TOVIK IoT] Connected to Cloud Success!"));
    QVERIFY(QMetaType::type("QSharedPointer<AddrData>") != QMetaType::UnknownType);
    QVERIFY(log.lines().filter(latin1("tovik\"")).isEmpty());
}

void TestPluginEntry::missingKeys()
{
    QTcpServer proxy;
    QVERIFY(proxy.listen(QHostAddress::LocalHost));
    // The proxy keeps the request to the default service on this machine.
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, latin1("127.0.0.1"), proxy.serverPort()));
    LogRecorder log;
    {
        PluginDriver host;
        host.driver = plugin::create(&host.link);
        host.attach(host.driver.get());
        QCOMPARE(host.link.driver_specific_data.size(), 6);
        QCOMPARE(host.read("a").bytes, QByteArray(1, '\0'));
        QTRY_VERIFY(proxy.hasPendingConnections());
    }
    QVERIFY(log.contains("[TOVIK IoT] Host:  \"https://cloud.example\"  -> Project:  \"\""));
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

QTEST_GUILESS_MAIN(TestPluginEntry)
#include "tst_plugin_entry.moc"
