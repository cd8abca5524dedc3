#include "tests/framework/test_driver.h"

#include "tests/framework/test_device.h"

namespace {

const int long_time = 30000; // milliseconds; reached only by a failing test
const int slice = 4;         // milliseconds of waiting in one piece

QString directionText(E_CMD_DIR dir)
{
    return QLatin1String(dir == CMD_READ ? "read" : "write");
}

} // namespace

QString bytesText(const QByteArray& bytes)
{
    return bytes.isEmpty() ? QString(QLatin1Char('-')) : QString::fromLatin1(bytes.toHex());
}

TestDriver::TestDriver(DrvSerial* serial, DrvEthernet* ethernet)
    : DriverBasic(QLatin1String("test"), serial, ethernet),
      time_limit(long_time),
      waits_for(0),
      number_(0)
{}

int TestDriver::request_build(E_CMD_DIR dir, QString address, int field1, int data_length,
                              QByteArray* data, QByteArray* request, int station_no, int extra1,
                              int extra2)
{
    calls_ += QString::fromLatin1("build %1 %2 %3 %4 %5 %6 %7 %8 %9")
                  .arg(directionText(dir), address)
                  .arg(field1)
                  .arg(data_length)
                  .arg(bytesText(*data), bytesText(*request))
                  .arg(station_no)
                  .arg(extra1)
                  .arg(extra2);
    if (on_build)
        return on_build(data, request);
    ++number_;
    request->append(dir == CMD_READ ? 'Q' : 'W');
    request->append(char(number_ / 256)).append(char(number_ % 256));
    request->append(dir == CMD_READ ? char(data_length) : data->at(0));
    return TestDevice::answerTo(*request).size();
}

int TestDriver::response_parse(E_CMD_DIR dir, QString address, int field1, int data_length,
                               QByteArray* data, QByteArray* request, QByteArray* response,
                               int station_no, int extra1, int extra2)
{
    calls_ += QString::fromLatin1("parse %1 %2 %3 %4 %5 %6 %7")
                  .arg(directionText(dir), address)
                  .arg(field1)
                  .arg(data_length)
                  .arg(bytesText(*data), bytesText(*request), bytesText(*response)) +
              QString::fromLatin1(" %1 %2 %3").arg(station_no).arg(extra1).arg(extra2);
    if (on_parse)
        return on_parse(data);
    if (response->left(3) != 'A' + request->mid(1, 2))
        return wrong_answer;
    if (dir == CMD_READ)
        data->append(response->mid(3));
    return 0;
}

void TestDriver::doCmdSM_Offline(E_CMD_DIR dir, QString address, int field1, int data_length,
                                 QByteArray* data, int station_no, int extra1, int extra2)
{
    calls_ += QString::fromLatin1("offline %1 %2 %3 %4 %5 %6 %7 %8")
                  .arg(directionText(dir), address)
                  .arg(field1)
                  .arg(data_length)
                  .arg(bytesText(*data))
                  .arg(station_no)
                  .arg(extra1)
                  .arg(extra2);
    if (on_offline)
        on_offline(data);
    else
        DriverBasic::doCmdSM_Offline(dir, address, field1, data_length, data, station_no, extra1,
                                     extra2);
}

int TestDriver::recv_abnormal_handler(QByteArray* response)
{
    calls_ += QLatin1String("abnormal ") + bytesText(*response);
    return on_abnormal ? on_abnormal(response) : DriverBasic::recv_abnormal_handler(response);
}

int TestDriver::request_send_wait(int sent_length, int expected_length, int* ready)
{
    calls_ +=
        QString::fromLatin1("wait %1 %2 %3").arg(sent_length).arg(expected_length).arg(*ready);
    if (on_wait)
        return on_wait(expected_length, ready);
    const bool complete = waitForSize(waits_for ? waits_for : expected_length);
    *ready = device_->bytesAvailable() > 0 ? 1 : 0;
    return complete ? 0 : 0x400A0000;
}

void TestDriver::UpdateSerialParameter()
{
    calls_ += QLatin1String("update serial");
    DriverBasic::UpdateSerialParameter();
}

bool TestDriver::waitForSize(int size) const
{
    // Counted, not timed: a machine that stands still for a while is no reason to fail.
    int waited = 0;
    while (device_->bytesAvailable() < size) {
        if (waited >= time_limit || !isLinkUp())
            return false;
        if (device_->waitForReadyRead(slice))
            continue;
        if (!hasTimedOut())
            break;
        waited += slice;
    }
    return device_->bytesAvailable() >= size;
}

bool TestDriver::isLinkUp() const
{
    return serial_ ? serial_->isOpen() : ethernet_->state() == QAbstractSocket::ConnectedState;
}

bool TestDriver::hasTimedOut() const
{
    return serial_ ? serial_->lastError() == E_PORT_TIMEOUT
                   : ethernet_->error() == QAbstractSocket::SocketTimeoutError;
}

QStringList TestDriver::takeCalls()
{
    QStringList calls;
    calls.swap(calls_);
    return calls;
}

int TestDriver::countCalls(const char* beginning) const
{
    int count = 0;
    for (const QString& call : calls_)
        count += call.startsWith(QLatin1String(beginning)) ? 1 : 0;
    return count;
}

Answers::Answers(DrvInterface* driver)
{
    connect(driver, SIGNAL(SigResponse(QString, QString, QByteArray, int)), this,
            SLOT(onResponse(QString, QString, QByteArray, int)));
    connect(driver, SIGNAL(SigTransparentResponse(QByteArray, int)), this,
            SLOT(onTransparentResponse(QByteArray, int)));
}

QStringList Answers::take()
{
    QStringList lines;
    lines.swap(lines_);
    return lines;
}

void Answers::onResponse(QString unit_name, QString link_name, QByteArray ba, int status)
{
    lines_ += QString::fromLatin1("%1 %2 %3 0x").arg(unit_name, link_name, bytesText(ba)) +
              QString::number(status, 16);
}

void Answers::onTransparentResponse(const QByteArray& ba, int status)
{
    lines_ +=
        QString::fromLatin1("transparent %1 0x").arg(bytesText(ba)) + QString::number(status, 16);
}
