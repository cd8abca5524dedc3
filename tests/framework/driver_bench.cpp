#include "tests/framework/driver_bench.h"

#include "tests/support/kernel_input.h"

#include <QHostAddress>

namespace {

const int patience = 30000; // milliseconds; reached only by a failing test

} // namespace

QSharedPointer<AddrData> someAddress(int data_length)
{
    QSharedPointer<AddrData> addr(new AddrData);
    addr->address = QLatin1String("D7");
    addr->field1 = 1;
    addr->data_length = data_length;
    addr->extra1 = 3;
    addr->extra2 = 4;
    return addr;
}

ScriptedDevice::Line lineOf(int number)
{
    return number == 0 ? ScriptedDevice::Line::Tcp : ScriptedDevice::Line::Pty;
}

DriverBench::DriverBench(ScriptedDevice::Line line, const DrvBase& settings)
    : device(line),
      connections_(0)
{
    DrvBase* base = nullptr;
    if (line == ScriptedDevice::Line::Tcp) {
        ethernet.reset(new DrvEthernet);
        base = ethernet.get();
    } else {
        serial.reset(new DrvSerial);
        base = serial.get();
    }
    *base = settings;
    driver.reset(new TestDriver(serial.get(), ethernet.get()));
    answers.reset(new Answers(driver.get()));
}

DriverBench::~DriverBench() = default;

bool DriverBench::connectLink()
{
    if (serial) {
        serial->close();
        serial->setPortName(device.portName());
        return serial->open(QIODevice::ReadWrite);
    }
    ethernet->abort();
    ethernet->connectToHost(QHostAddress(QHostAddress::LocalHost), device.port());
    return ethernet->waitForConnected(patience) && device.waitForConnections(++connections_);
}

QIODevice* DriverBench::link() const
{
    return driver->device_;
}

DrvBase& DriverBench::settings() const
{
    return serial ? static_cast<DrvBase&>(*serial) : *ethernet;
}

bool DriverBench::waitInKernel(int size) const
{
    return ::waitInKernel(serial.get(), ethernet.get(), size);
}

bool DriverBench::waitInQt(int size) const
{
    return waitInKernel(size) && link()->waitForReadyRead(patience);
}

QStringList DriverBench::read(int size, const char* unit)
{
    Q_EMIT driver->SigGetValuesByteArray(QLatin1String(unit), QLatin1String("link"), 9,
                                         someAddress(size));
    return answers->take();
}

QStringList DriverBench::write(const QByteArray& bytes, const char* unit)
{
    Q_EMIT driver->SigSetValuesByteArray(QLatin1String(unit), QLatin1String("link"), 9, bytes,
                                         someAddress(bytes.size()));
    return answers->take();
}

QStringList DriverBench::transparent(const QByteArray& request)
{
    driver->RunTransparentRequest(request);
    return answers->take();
}

bool DriverBench::lockIsFree() const
{
    if (!driver->request_lock_.tryLock())
        return false;
    driver->request_lock_.unlock();
    return true;
}
