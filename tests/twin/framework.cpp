#include "framework/driver_basic.h"
#include "tests/twin/ear.h"
#include "tests/twin/far_side.h"
#include "tests/twin/transcript.h"
#include "tests/twin/twin.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace {

const int time_limit = 300;         // ms; what comes in time comes much sooner
const int transparent_limit = 2000; // ms

/// Its requests are the address and a line's end; an answer has four bytes.
class LineDriver : public DriverBasic
{
public:
    LineDriver(DrvSerial* serial, DrvEthernet* ethernet)
        : DriverBasic(QLatin1String("line"), serial, ethernet)
    {}

    int request_build(E_CMD_DIR dir, QString address, int field1, int data_length, QByteArray* data,
                      QByteArray* request, int station_no, int extra1, int extra2)
    {
        say("build " + QByteArray::number(dir) + ' ' + address.toUtf8() + ' ' +
            QByteArray::number(field1) + ' ' + QByteArray::number(data_length) + ' ' + hex(*data) +
            ' ' + QByteArray::number(station_no) + ' ' + QByteArray::number(extra1) + ' ' +
            QByteArray::number(extra2));
        *request = address.toUtf8() + '\n';
        return address == QLatin1String("impossible") ? 0 : 4;
    }

    int request_send_wait(int, int expected_length, int* ready)
    {
        QElapsedTimer time;
        time.start();
        while (time.elapsed() < time_limit) {
            if (device_->bytesAvailable() >= expected_length) {
                *ready = 1;
                return 0;
            }
            waitForLinkInput(5);
        }
        return 0x400A0000;
    }

    int response_parse(E_CMD_DIR, QString, int, int, QByteArray* data, QByteArray*,
                       QByteArray* response, int, int, int)
    {
        say("parse " + hex(*response));
        *data = *response;
        return response->startsWith('!') ? 0x400B0101 : 0;
    }
};

/// \param replace makes the link anew, after one was lost
template <typename Replace>
void requests(LineDriver* driver, Replace replace)
{
    Ear ear;
    QObject::connect(driver, SIGNAL(SigResponse(QString, QString, QByteArray, int)), &ear,
                     SLOT(onResponse(QString, QString, QByteArray, int)));
    QObject::connect(driver, SIGNAL(SigTransparentResponse(QByteArray, int)), &ear,
                     SLOT(onTransparentResponse(QByteArray, int)));
    QStringList units(QLatin1String("{A}1"));
    driver->unit_list = &units;
    QSharedPointer<AddrData> address(new AddrData);
    address->field1 = 5;
    address->data_length = 4;
    // The device's answer hangs on the first letter.
    const char* const names[] = {"good",       "split", "none", "refused",
                                 "impossible", "two",   "good", "hang up"};
    for (const char* name : names) {
        address->address = QLatin1String(name);
        for (int retries = 0; retries <= 1; ++retries) {
            driver->retry_count_ = retries;
            driver->SigGetValuesByteArray(QLatin1String("{A}"), QLatin1String("link"), 3, address);
            if (qstrcmp(name, "hang up") == 0)
                replace();
            driver->SigSetValuesByteArray(QLatin1String("{B}"), QLatin1String("link"), 3,
                                          QByteArray("\1\2"), address);
        }
        sayLog();
    }
    driver->response_timeout_ = transparent_limit;
    driver->RunTransparentRequest("good\n");
    driver->RunTransparentRequest("long\n");
    driver->response_timeout_ = time_limit;
    driver->RunTransparentRequest("none\n");
    driver->RunTransparentRequest("hang up\n");
    sayLog();
}

/// The parts of the answer are further apart than half the time after which the line counts as
/// silent, which is all that a port gives that does not wait.
void transparentWithAPause(LineDriver* driver)
{
    Ear ear;
    QObject::connect(driver, SIGNAL(SigTransparentResponse(QByteArray, int)), &ear,
                     SLOT(onTransparentResponse(QByteArray, int)));
    driver->interval_timeout_ = 10;
    driver->response_timeout_ = transparent_limit;
    driver->RunTransparentRequest("pause\n");
    sayLog();
}

void overTcp()
{
    section("tcp");
    TcpFarSide far_side;
    DrvEthernet link;
    auto replace = [&] {
        link.abort();
        link.connectToHost(QLatin1String("127.0.0.1"), far_side.port());
        say("connected " + QByteArray::number(link.waitForConnected(time_limit * 10)));
    };
    replace();
    LineDriver driver(0, &link);
    requests(&driver, replace);
}

void overSerialLine()
{
    section("serial");
    PtyFarSide far_side;
    DrvSerial link;
    auto replace = [&] {
        link.close();
        link.setPortName(far_side.renew());
        link.setBaudRate(BAUD38400);
        say("opened " + QByteArray::number(link.open(QIODevice::ReadWrite)));
    };
    replace();
    LineDriver driver(&link, 0);
    say("times " + QByteArray::number(driver.interval_timeout_) + ' ' +
        QByteArray::number(driver.character_3_5_));
    requests(&driver, replace);
    replace();
    transparentWithAPause(&driver);
    const BaudRateType speeds[] = {BAUD300, BAUD1200, BAUD9600, BAUD115200};
    for (BaudRateType speed : speeds) {
        link.setBaudRate(speed);
        driver.SigUpdateDrvSerial();
        say("times " + QByteArray::number(driver.interval_timeout_) + ' ' +
            QByteArray::number(driver.character_3_5_));
    }
    sayLog();
}

void withoutALink()
{
    section("no link");
    LineDriver driver(0, 0);
    Ear ear;
    QObject::connect(&driver, SIGNAL(SigResponse(QString, QString, QByteArray, int)), &ear,
                     SLOT(onResponse(QString, QString, QByteArray, int)));
    driver.SigGetValuesByteArray(QLatin1String("u"), QLatin1String("l"), 1,
                                 QSharedPointer<AddrData>(new AddrData));
    sayLog();
}

} // namespace

void twinFramework()
{
    overTcp();
    overSerialLine();
    withoutALink();
}
