#include "tests/tools/host/echo_driver/echo_driver.h"

#include <QDebug>
#include <QThread>

EchoDriver::EchoDriver(const QString& name, DrvSerial* serial, DrvEthernet* ethernet)
    : DriverBasic(name, serial, ethernet)
{
    if (ethernet)
        connect(ethernet, SIGNAL(EmitNotifyBeforeRelease()), this, SLOT(onRelease()));
    qDebug() << "[Echo]" << name << "settings" << request_delay_ << response_timeout_
             << retry_count_ << link_param_a_ << link_param_b_;
}

EchoDriver::~EchoDriver()
{
    const bool in_time = released_ || serial_;
    qDebug() << (in_time ? "[Echo] deleted after release" : "[Echo] deleted without release")
             << (thread() == QThread::currentThread() ? "in its thread" : "in another thread");
}

void EchoDriver::onRelease()
{
    released_ = true;
}

bool EchoDriver::IsTransparentModeSupported()
{
    return link_param_a_ != 1;
}

void EchoDriver::SlotGetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                        QSharedPointer<AddrData> addr)
{
    qDebug() << "[Echo] unit" << unit_name << "asks for" << addr->address;
    if (addr->address != QLatin1String("mute"))
        DriverBasic::SlotGetValuesByteArray(unit_name, link_name, station_no, addr);
}

int EchoDriver::request_build(E_CMD_DIR dir, QString address, int field1, int data_length,
                              QByteArray* data, QByteArray* request, int station_no, int extra1,
                              int extra2)
{
    if (address == QLatin1String("unbuildable"))
        return 0;
    const QString argument = address.section(QLatin1Char(':'), 1);
    if (address.startsWith(QLatin1String("code:"))) {
        error_code_ = argument.toInt(nullptr, 16);
        return 0;
    }
    const QString numbers = QStringLiteral(" %1 %2 %3 %4 %5 ")
                                .arg(station_no)
                                .arg(field1)
                                .arg(data_length)
                                .arg(extra1)
                                .arg(extra2);
    *request += (dir == CMD_READ ? 'r' : 'w') + numbers.toLatin1() + address.toLatin1();
    if (dir == CMD_WRITE)
        *request += ' ' + data->toHex();
    *request += '\n';
    if (dir == CMD_WRITE)
        return 2;
    const bool says_length =
        address.startsWith(QLatin1String("hex:")) || address.startsWith(QLatin1String("long:"));
    return says_length ? argument.size() / 2 : data_length;
}

int EchoDriver::response_parse(E_CMD_DIR dir, QString, int, int, QByteArray* data, QByteArray*,
                               QByteArray* response, int, int, int)
{
    if (dir == CMD_READ)
        *data = *response;
    return 0;
}

int EchoDriver::request_send_wait(int, int expected_length, int* ready)
{
    return waitForBytes(expected_length, ready);
}
