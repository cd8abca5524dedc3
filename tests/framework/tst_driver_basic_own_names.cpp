#include <QTest>

namespace {

// Names that an author may have chosen long ago.
struct Request
{
    int number;
};

struct HostRequest
{
    int station;
};

int run(const Request& request)
{
    return request.number;
}

int runAttempts(int count)
{
    return count;
}

int takeSettings()
{
    return 3;
}

int connectHost()
{
    return 4;
}

int isUnitServed()
{
    return 5;
}

int judgeFailure()
{
    return 6;
}

int sendTransparently()
{
    return 7;
}

int waitUntilStable()
{
    return 8;
}

int pause()
{
    return 9;
}

const int success = 10;
const int stopped = 11;

} // namespace

#include "framework/driver_basic.h"
#include "framework/result_code.h"

namespace {

/// A driver that uses them inside of its class, where names of the base come first.
class AuthorsDriver : public DriverBasic
{
public:
    AuthorsDriver() : DriverBasic(QString(), nullptr, nullptr) {}

    int request_build(E_CMD_DIR, QString, int, int, QByteArray*, QByteArray*, int, int,
                      int) override
    {
        return 0;
    }
    int response_parse(E_CMD_DIR, QString, int, int, QByteArray*, QByteArray*, QByteArray*, int,
                       int, int) override
    {
        return 0;
    }
    void doCmdSM_Offline(E_CMD_DIR, QString, int, int, QByteArray*, int, int, int) override
    {
        const Request request = {1};
        const HostRequest host_request = {2};
        sum = run(request) + host_request.station + runAttempts(2) + takeSettings() +
              connectHost() + isUnitServed() + judgeFailure() + sendTransparently() +
              waitUntilStable() + pause() + success + stopped;
    }

    int sum = 0;
};

} // namespace

/// Nothing private of the base hides what a driver's author calls so; that this compiles shows it.
class TestDriverBasicOwnNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void authorsNamesAreTheAuthors();
};

void TestDriverBasicOwnNames::authorsNamesAreTheAuthors()
{
    AuthorsDriver driver;
    Q_EMIT driver.SigGetValuesByteArray(QString(), QString(), 0,
                                        QSharedPointer<AddrData>(new AddrData));
    QCOMPARE(driver.sum, 1 + 2 + 2 + 3 + 4 + 5 + 6 + 7 + 8 + 9 + 10 + 11);
}

QTEST_GUILESS_MAIN(TestDriverBasicOwnNames)
#include "tst_driver_basic_own_names.moc"
