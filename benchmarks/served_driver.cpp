#include "benchmarks/served_driver.h"

#include "benchmarks/sample_values.h"

#include <QCoreApplication>

namespace bench {

namespace {

const int most_writes_on_their_way = 1000;

} // namespace

WriteDrain::WriteDrain(DrvInterface* driver, ClientThread client_thread) : sent_(0), taken_(0)
{
    disconnect(driver, SIGNAL(EmitWriteValue(int, QVariant)), 0, 0);
    connect(driver, SIGNAL(EmitWriteValue(int, QVariant)), this, SLOT(take(int, QVariant)));
    moveToThread(&thread_);
    if (client_thread == sleeping)
        thread_.start();
}

WriteDrain::~WriteDrain()
{
    thread_.quit();
    thread_.wait();
}

bool WriteDrain::isDue()
{
    return ++sent_ % most_writes_on_their_way == 0;
}

void WriteDrain::empty()
{
    if (!thread_.isRunning()) {
        QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
        return;
    }
    while (taken_ < sent_)
        QThread::yieldCurrentThread();
}

void WriteDrain::take(int index, QVariant value)
{
    Q_UNUSED(index)
    Q_UNUSED(value)
    ++taken_;
}

ServedDriver::ServedDriver(int count, const char* type, int data_length) : next_(0)
{
    const PropertyTovikIot configuration = sampleConfiguration(count, type);
    link_.driver_specific_data[QLatin1String("tovik_iot")] = QVariant::fromValue(configuration);
    link_.driver_specific_data[QLatin1String("tovik_iot_err_handle_type")] = 3;
    driver_.reset(new DrvTovikIot(&link_));
    for (const PropertyTovikIotDataItem& item : configuration.dataitems) {
        // A host's texts are its own, not the configuration's.
        const QString name(item.name.constData(), item.name.size());
        const QSharedPointer<AddrData> address(new AddrData);
        address->address = name;
        address->data_length = data_length;
        names_.push_back(name);
        addresses_.push_back(address);
    }
}

ServedDriver::~ServedDriver()
{
    Q_EMIT link_.EmitNotifyBeforeRelease();
}

DrvInterface* ServedDriver::driver()
{
    return driver_.get();
}

const std::vector<QString>& ServedDriver::names() const
{
    return names_;
}

const QSharedPointer<AddrData>& ServedDriver::nextAddress()
{
    next_ = next_ + 1 < addresses_.size() ? next_ + 1 : 0;
    return addresses_[next_];
}

} // namespace bench
