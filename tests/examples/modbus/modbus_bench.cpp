#include "tests/examples/modbus/modbus_bench.h"

#include <QHostAddress>

using modbus::Transport;

namespace {

QSharedPointer<AddrData> addressOf(const Asked& asked)
{
    QSharedPointer<AddrData> address(new AddrData);
    address->address = asked.address;
    address->data_length = asked.data_length;
    address->field1 = asked.field1;
    address->extra1 = asked.extra1;
    address->extra2 = asked.extra2;
    return address;
}

} // namespace

Asked readOf(const char* address, int data_length)
{
    Asked asked;
    asked.address = QLatin1String(address);
    asked.data_length = data_length;
    return asked;
}

Asked writeOf(const char* address, const QByteArray& data)
{
    Asked asked;
    asked.address = QLatin1String(address);
    asked.data = data;
    return asked;
}

MiniatureHost::MiniatureHost(DrvInterface* driver) : driver_(driver)
{
    connect(driver, SIGNAL(SigResponse(QString, QString, QByteArray, int)), this,
            SLOT(onResponse(QString, QString, QByteArray, int)));
}

Got MiniatureHost::read(const Asked& asked)
{
    got_ = Got();
    Q_EMIT driver_->SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"),
                                          asked.station, addressOf(asked));
    return got_;
}

Got MiniatureHost::write(const Asked& asked)
{
    got_ = Got();
    Q_EMIT driver_->SigSetValuesByteArray(QLatin1String("unit"), QLatin1String("link"),
                                          asked.station, asked.data, addressOf(asked));
    return got_;
}

void MiniatureHost::onResponse(QString, QString, QByteArray ba, int status)
{
    ++got_.answers;
    got_.status = status;
    got_.data = ba;
}

class ModbusBench::PacedDriver : public ModbusDriver
{
public:
    explicit PacedDriver(ModbusBench* bench)
        : ModbusDriver(QString(), bench->transport == Transport::Rtu ? &bench->serial : nullptr,
                       &bench->ethernet),
          bench_(bench)
    {}

    int request_send_wait(int sent_length, int expected_length, int* ready) override
    {
        if (bench_->isLinkUp())
            ++bench_->sent_;
        if (bench_->is_paced_)
            bench_->waitUntilServed();
        return ModbusDriver::request_send_wait(sent_length, expected_length, ready);
    }

private:
    ModbusBench* bench_;
};

ModbusBench::ModbusBench(Transport transport_used)
    : transport(transport_used),
      device(transport_used)
{
    settings().response_timeout = 5000;
    driver.reset(new PacedDriver(this));
    host.reset(new MiniatureHost(driver.get()));
}

ModbusBench::~ModbusBench() {}

DrvBase& ModbusBench::settings()
{
    if (transport == Transport::Rtu)
        return serial;
    return ethernet;
}

void ModbusBench::settingsChanged()
{
    if (transport == Transport::Rtu)
        Q_EMIT driver->SigUpdateDrvSerial();
    else
        Q_EMIT driver->SigUpdateDrvEthernet();
}

bool ModbusBench::connectLink()
{
    closeLink();
    if (transport == Transport::Rtu) {
        serial.setPortName(device.portName());
        serial.setBaudRate(BAUD115200);
        const bool open = serial.open(QIODevice::ReadWrite);
        settingsChanged();
        return open;
    }
    ethernet.connectToHost(QHostAddress(QHostAddress::LocalHost), device.port());
    return ethernet.waitForConnected(30000);
}

void ModbusBench::closeLink()
{
    if (transport == Transport::Rtu)
        serial.close();
    else
        ethernet.abort();
}

bool ModbusBench::isLinkUp() const
{
    return transport == Transport::Rtu ? serial.isOpen()
                                       : ethernet.state() == QAbstractSocket::ConnectedState;
}

void ModbusBench::setResponseTimeout(int milliseconds)
{
    settings().response_timeout = milliseconds;
    settingsChanged();
}

void ModbusBench::setRetries(int count)
{
    settings().retry_count = count;
    settingsChanged();
}

void ModbusBench::waitUntilServed()
{
    device.waitUntilServed(sent_);
}

void ModbusBench::answerWith(const QByteArray& pdu)
{
    answerBytes([this, pdu](const QByteArray& request) { return frame(request, pdu); });
}

void ModbusBench::answerBytes(const std::function<QByteArray(const QByteArray&)>& bytes)
{
    device.setBehaviour([bytes](const QByteArray& request) {
        return QList<DeviceStep>{{bytes(request), 0, false}};
    });
}

QByteArray ModbusBench::frame(const QByteArray& request, const QByteArray& pdu) const
{
    return answerFrame(transport, request, pdu);
}

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

QString code(int status)
{
    return QLatin1String("0x") + QString::number(static_cast<uint>(status), 16).toUpper();
}
