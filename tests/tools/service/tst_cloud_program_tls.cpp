#include "tests/support/cloud_process.h"

#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class TestCloudProgramTls : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void certificateIsGoodForTheClient_data();
    void certificateIsGoodForTheClient();
    void certificateFaults_data();
    void certificateFaults();
    void restrictsVersions_data();
    void restrictsVersions();
    void showsAGivenCertificate();

private:
    struct Handshake
    {
        bool encrypted = false;
        QList<QSslError::SslError> errors;
        QSslCertificate certificate;
        QSsl::SslProtocol protocol = QSsl::UnknownProtocol;
    };

    bool start(const QStringList& options = {});
    Handshake shakeHands(QSsl::SslProtocol protocol = QSsl::TlsV1_2OrLater);

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<CloudProcess> cloud_;
};

void TestCloudProgramTls::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    cloud_ = std::make_unique<CloudProcess>();
}

bool TestCloudProgramTls::start(const QStringList& options)
{
    return cloud_->start(options + QStringList{QStringLiteral("--save-cert"),
                                               folder_->filePath(QStringLiteral("all.pem"))});
}

// Trusts what --save-cert wrote, and nothing else.
TestCloudProgramTls::Handshake TestCloudProgramTls::shakeHands(QSsl::SslProtocol protocol)
{
    QSslSocket socket;
    QSslConfiguration configuration = socket.sslConfiguration();
    configuration.setProtocol(protocol);
    configuration.setCaCertificates(
        QSslCertificate::fromPath(folder_->filePath(QStringLiteral("all.pem"))));
    socket.setSslConfiguration(configuration);
    Handshake handshake;
    connect(&socket, QOverload<const QList<QSslError>&>::of(&QSslSocket::sslErrors), this,
            [&handshake](const QList<QSslError>& errors) {
                for (const QSslError& error : errors)
                    handshake.errors.append(error.error());
            });
    socket.connectToHostEncrypted(QStringLiteral("127.0.0.1"),
                                  static_cast<quint16>(cloud_->port()));
    handshake.encrypted = socket.waitForEncrypted(10000);
    handshake.certificate = socket.peerCertificate();
    handshake.protocol = socket.sessionProtocol();
    return handshake;
}

void TestCloudProgramTls::certificateIsGoodForTheClient_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("algorithm");
    QTest::newRow("RSA") << QStringLiteral("rsa") << int(QSsl::Rsa);
    QTest::newRow("P-256") << QStringLiteral("p256") << int(QSsl::Ec);
}

void TestCloudProgramTls::certificateIsGoodForTheClient()
{
    QFETCH(QString, type);
    QFETCH(int, algorithm);
    QVERIFY(start({QStringLiteral("--key-type"), type}));
    const Handshake handshake = shakeHands();
    QVERIFY(handshake.encrypted);
    QCOMPARE(int(handshake.certificate.publicKey().algorithm()), algorithm);
    const auto names = handshake.certificate.subjectAlternativeNames();
    QVERIFY(names.values(QSsl::DnsEntry).contains(QStringLiteral("localhost")));
    QVERIFY(names.values(QSsl::IpAddressEntry).contains(QStringLiteral("127.0.0.1")));
}

void TestCloudProgramTls::certificateFaults_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("error");
    QTest::newRow("another host") << QByteArray("wrong-host") << int(QSslError::HostNameMismatch);
    QTest::newRow("expired") << QByteArray("expired") << int(QSslError::CertificateExpired);
}

void TestCloudProgramTls::certificateFaults()
{
    QFETCH(QByteArray, fault);
    QFETCH(int, error);
    QVERIFY(start());
    QVERIFY(cloud_->addFault(fault.toStdString() + ":count=1") > 0);
    const Handshake bad = shakeHands();
    QVERIFY(!bad.encrypted);
    // Qt never trusts an expired certificate, so there it complains of the signature as well.
    QVERIFY(bad.errors.contains(QSslError::SslError(error)));
    QVERIFY(shakeHands().encrypted);
}

void TestCloudProgramTls::restrictsVersions_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("takes12");
    QTest::addColumn<bool>("takes13");
    QTest::newRow("1.2 only") << QStringLiteral("1.2") << true << false;
    QTest::newRow("1.3 only") << QStringLiteral("1.3") << false << true;
}

void TestCloudProgramTls::restrictsVersions()
{
    QFETCH(QString, version);
    QFETCH(bool, takes12);
    QFETCH(bool, takes13);
    QVERIFY(start({QStringLiteral("--tls"), version}));
    QCOMPARE(shakeHands(QSsl::TlsV1_2).encrypted, takes12);
    QCOMPARE(shakeHands(QSsl::TlsV1_3).encrypted, takes13);
}

void TestCloudProgramTls::showsAGivenCertificate()
{
    const QString certificate = folder_->filePath(QStringLiteral("cert.pem"));
    const QString key = folder_->filePath(QStringLiteral("key.pem"));
    QProcess openssl;
    openssl.start(
        QStringLiteral("openssl"),
        QStringLiteral("req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=given "
                       "-addext subjectAltName=IP:127.0.0.1")
                .split(QLatin1Char(' ')) +
            QStringList{QStringLiteral("-keyout"), key, QStringLiteral("-out"), certificate});
    QVERIFY(openssl.waitForFinished());
    QCOMPARE(openssl.exitCode(), 0);
    QVERIFY(start({QStringLiteral("--cert"), certificate, QStringLiteral("--key"), key}));
    const Handshake handshake = shakeHands();
    QVERIFY(handshake.encrypted);
    QCOMPARE(handshake.certificate, QSslCertificate::fromPath(certificate).at(0));
    QVERIFY(cloud_->addFault("expired:count=1") > 0);
    QVERIFY(shakeHands().errors.contains(QSslError::CertificateExpired));
}

QTEST_GUILESS_MAIN(TestCloudProgramTls)
#include "tst_cloud_program_tls.moc"
