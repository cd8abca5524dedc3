#include "tests/reliability/stress/stress_driver.h"

#include "tests/reliability/stress/ledger.h"
#include "tests/reliability/stress/stress_service.h"

namespace {

QString latin1(const QByteArray& text)
{
    return QString::fromLatin1(text);
}

/// In milliseconds: closed at once, while it connects, in its first cycles, or after some.
qint64 someLifetime(std::minstd_rand* random)
{
    const quint32 longest[] = {1, 30, 1500, 6000};
    return qint64((*random)() % longest[(*random)() % 4]);
}

} // namespace

StressDriver::StressDriver(int number, const QString& url, int items, std::minstd_rand* random,
                           Ledger* ledger)
    : number_(number),
      items_(items),
      lifetime_(someLifetime(random)),
      random_(random),
      ledger_(ledger)
{
    host_.property.host = url;
    host_.property.project = latin1("plant");
    host_.property.email = latin1("driver-" + QByteArray::number(number));
    for (int i = 0; i < items; ++i) {
        const QByteArray id = StressService::idOf(i);
        const stamped::Kind kind = StressService::kindOf(i);
        host_.serve(id.constData(), id.constData(), stamped::typeName(kind));
        host_.property.dataitems.last().value = stamped::variant(kind, 0);
    }
    const int type = int((*random)() % 4);
    HostSide::setErrorHandling(&host_.link, type, 1, (*random)() % 2 == 0, true);
    age_.start();
    host_.start();
}

StressDriver::~StressDriver()
{
    if (host_.driver)
        close();
}

int StressDriver::someItem()
{
    return int((*random_)() % quint32(items_));
}

void StressDriver::read()
{
    const int item = someItem();
    const QByteArray id = StressService::idOf(item);
    const DriverAnswer answer = host_.read(id.constData());
    if (answer.status == -1) {
        ledger_->finding(latin1("a read was not answered exactly once: " + id));
        return;
    }
    const stamped::Kind kind = StressService::kindOf(item);
    const qint64 stamp = stamped::stampOfHostBytes(kind, answer.bytes);
    if (stamp == stamped::torn)
        ledger_->finding(latin1("a torn value of " + id + ": " + answer.bytes.toHex()));
    else if (stamp > ledger_->lastSequence())
        ledger_->finding(
            latin1("a value that nobody wrote: " + id + " is " + QByteArray::number(stamp)));
}

void StressDriver::write()
{
    const int item = someItem();
    const stamped::Kind kind = StressService::kindOf(item);
    const qint64 stamp = stamped::stampOf(kind, ledger_->nextSequence());
    const QByteArray bytes = stamped::hostBytes(kind, stamp);
    const QByteArray id = StressService::idOf(item);
    ledger_->sent(number_, StressService::keyOf(id, stamp));
    const DriverAnswer answer = host_.write(id.constData(), bytes);
    if (answer.status == -1 || answer.bytes != bytes)
        ledger_->finding(latin1("a write was not answered exactly once: " + id));
}

qint64 StressDriver::close()
{
    QElapsedTimer duration;
    duration.start();
    host_.close();
    const qint64 taken = duration.elapsed();
    read();
    write();
    host_.driver.reset();
    ledger_->closed(number_);
    return taken;
}

bool StressDriver::isDue() const
{
    return age_.elapsed() >= lifetime_;
}
