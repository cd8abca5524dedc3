#include "tools/host/config/config_file.h"
#include "tools/host/terminal/exit_code.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tovik_host;
using namespace tovik_host::config;

class TestHostServiceAccount : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void takesOptionsBeforeTheRest();
    void takesPasswordFromTheFirstPlace_data();
    void takesPasswordFromTheFirstPlace();
    void remembersWhereAConfigurationHasIt();
    void complains_data();
    void complains();
    void saysWhatIsMissing();

private:
    QString write(const char* name, const QByteArray& text);

    QTemporaryDir folder_;
};

QString TestHostServiceAccount::write(const char* name, const QByteArray& text)
{
    QFile file(folder_.filePath(QLatin1String(name)));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

void TestHostServiceAccount::init()
{
    qunsetenv("TOVIK_PASSWORD");
    qputenv("TOVIK_TEST_PASSWORD", "from variable");
}

void TestHostServiceAccount::takesOptionsBeforeTheRest()
{
    CommonOptions options;
    options.config = write("c.json", "{\"service\": {\"url\": \"https://c\", \"project\": \"pc\", "
                                     "\"email\": \"ec\", \"password\": \"s\"}, \"items\": "
                                     "[{\"name\": \"a\", \"id\": \"i\", \"type\": \"Bit\"}]}");
    Account base;
    base.project = QStringLiteral("base");
    Account account = resolveAccount(options, base);
    QCOMPARE(account.url, QStringLiteral("https://c"));
    QCOMPARE(account.project, QStringLiteral("pc"));
    QCOMPARE(account.password, QStringLiteral("s"));
    options.project = QStringLiteral("po");
    options.email = QStringLiteral("eo");
    options.url_file = write("url", "https://f:1\n");
    account = resolveAccount(options, base);
    QCOMPARE(account.url, QStringLiteral("https://f:1"));
    QCOMPARE(account.project, QStringLiteral("po"));
    QCOMPARE(account.email, QStringLiteral("eo"));
    QCOMPARE(resolveAccount(CommonOptions(), base).project, QStringLiteral("base"));
}

void TestHostServiceAccount::takesPasswordFromTheFirstPlace_data()
{
    QTest::addColumn<bool>("file");
    QTest::addColumn<bool>("variable");
    QTest::addColumn<bool>("config");
    QTest::addColumn<bool>("usual_variable");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("password_env");
    const QString usual = QStringLiteral("TOVIK_PASSWORD");
    QTest::newRow("file") << true << false << true << true << QStringLiteral("from file")
                          << QString();
    QTest::newRow("variable") << false << true << true << true << QStringLiteral("from variable")
                              << QStringLiteral("TOVIK_TEST_PASSWORD");
    QTest::newRow("configuration")
        << false << false << true << true << QStringLiteral("from config") << QString();
    QTest::newRow("usual variable")
        << false << false << false << true << QStringLiteral("from usual") << usual;
    QTest::newRow("nowhere") << false << false << false << false << QString() << usual;
}

void TestHostServiceAccount::takesPasswordFromTheFirstPlace()
{
    QFETCH(bool, file);
    QFETCH(bool, variable);
    QFETCH(bool, config);
    QFETCH(bool, usual_variable);
    QFETCH(QString, password);
    QFETCH(QString, password_env);
    Account base;
    CommonOptions options;
    if (file)
        options.password_file = write("pw", "from file\r\nsecond line\n");
    if (variable)
        options.password_env = QStringLiteral("TOVIK_TEST_PASSWORD");
    if (config) {
        base.password = QStringLiteral("from config");
        base.has_password = true;
    }
    if (usual_variable)
        qputenv("TOVIK_PASSWORD", "from usual");
    const Account account = resolveAccount(options, base);
    QCOMPARE(account.password, password);
    QCOMPARE(account.has_password, !password.isEmpty());
    QCOMPARE(account.password_env, password_env);
    QCOMPARE(account.password_file, file ? folder_.filePath(QStringLiteral("pw")) : QString());
}

void TestHostServiceAccount::remembersWhereAConfigurationHasIt()
{
    write("pw", "from file\n");
    const QByteArray end = "}, \"items\": [{\"name\": \"a\", \"id\": \"i\", \"type\": \"Bit\"}]}";
    const QByteArray start = "{\"service\": {\"project\": \"p\", \"email\": \"e\", ";
    const QString config = write("c.json", start + "\"password_file\": \"pw\"" + end);
    CommonOptions options;
    const Account of_file =
        resolveAccount(options, loadConfig(config, Password::in_file).config.service);
    QCOMPARE(of_file.password_file, folder_.filePath(QStringLiteral("pw")));
    QCOMPARE(of_file.password, QStringLiteral("from file"));
    QVERIFY(of_file.has_password);
    options.config = write("c.json", start + "\"password_env\": \"TOVIK_TEST_PASSWORD\"" + end);
    const Account of_variable = resolveAccount(options, Account());
    QCOMPARE(of_variable.password_env, QStringLiteral("TOVIK_TEST_PASSWORD"));
    QVERIFY(of_variable.has_password);

    qunsetenv("TOVIK_TEST_PASSWORD");
    const Account of_none = resolveAccount(options, Account());
    QVERIFY(!of_none.has_password);
    QCOMPARE(of_none.password_env, QStringLiteral("TOVIK_TEST_PASSWORD"));
    qputenv("TOVIK_PASSWORD", "from usual");
    QCOMPARE(resolveAccount(options, Account()).password, QStringLiteral("from usual"));
    QVERIFY(!resolveAccount(options, Account(), false).has_password);
    options.password_file = folder_.filePath(QStringLiteral("pw"));
    QCOMPARE(resolveAccount(options, Account()).password, QStringLiteral("from file"));
}

void TestHostServiceAccount::complains_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("url_file");
    QTest::addColumn<QString>("password_file");
    QTest::addColumn<QString>("message");
    QTest::newRow("address") << QStringLiteral("h") << QString() << QString()
                             << QStringLiteral("--url: must be an address such as");
    QTest::newRow("no address file")
        << QString() << QStringLiteral("/none") << QString()
        << QStringLiteral("cannot read the address file \"/none\": No such file or directory (is "
                          "the service running?)");
    QTest::newRow("address file without address")
        << QString() << QStringLiteral("/dev/null") << QString()
        << QStringLiteral("/dev/null: must be an address such as");
    QTest::newRow("no password file")
        << QString() << QString() << QStringLiteral("/none")
        << QStringLiteral("cannot read the password file \"/none\": No such file");
}

void TestHostServiceAccount::complains()
{
    QFETCH(QString, url);
    QFETCH(QString, url_file);
    QFETCH(QString, password_file);
    QFETCH(QString, message);
    CommonOptions options;
    options.url = url;
    options.url_file = url_file;
    options.password_file = password_file;
    try {
        resolveAccount(options, Account());
    } catch (const terminal::UsageError& error) {
        QVERIFY2(error.message().startsWith(message), qPrintable(error.message()));
        return;
    }
    QFAIL("no error");
}

void TestHostServiceAccount::saysWhatIsMissing()
{
    Account account;
    account.url = QStringLiteral("https://h");
    try {
        requireAccount(account);
        QFAIL("no error");
    } catch (const terminal::UsageError& error) {
        QCOMPARE(error.message(),
                 QStringLiteral("the account is not complete; add --project NAME, --email ADDRESS, "
                                "or a configuration with --config"));
    }
    account.project = QStringLiteral("p");
    account.email = QStringLiteral("e");
    requireAccount(account);
}

QTEST_GUILESS_MAIN(TestHostServiceAccount)
#include "tst_host_service_account.moc"
