#include "tests/tools/host/fake_driver/fake_driver.h"

#include <QDebug>

#include <thread>

namespace {

const int connect_milliseconds = 60;
const int cycle_milliseconds = 80;
const int stalled_cycles = 4;
const int status_1 = 0x400F0001;
const int status_7 = 0x400F0007;
const int status_8 = 0x400F0008;
const int status_256 = 0x400F0256;

/// What has been written, by id: it outlives the driver, as a service's memory does.
QMap<QString, QByteArray>& writtenValues()
{
    static QMap<QString, QByteArray> values;
    return values;
}

/// Debug lines come from a thread of its own, as a real driver's do.
void say(const char* text)
{
    std::thread([text] { qDebug() << text; }).join();
}

QByteArray littleEndian(int number, int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((number >> (8 * i)) & 0xFF);
    return bytes;
}

QByteArray initialBytes(const PropertyTovikIotDataItem& item)
{
    const QString text = item.value.toString();
    if (item.type == QLatin1String("String"))
        return text.toLatin1();
    if (item.type == QLatin1String("Bit"))
        return littleEndian(text == QLatin1String("1") ? 1 : 0, 1);
    return littleEndian(text.toInt(), item.type.startsWith(QLatin1String("16")) ? 2 : 4);
}

QByteArray serviceValue(const QString& id, int cycles)
{
    if (writtenValues().contains(id))
        return writtenValues().value(id);
    const QStringList values = id.section(QLatin1Char(':'), 1).split(QLatin1Char('/'));
    return QByteArray::fromHex(values.at(cycles % values.size()).toLatin1());
}

} // namespace

FakeDriver::FakeDriver(DrvEthernet* link)
    : property_(
          qvariant_cast<PropertyTovikIot>(link->GetDriverSpecificData(QStringLiteral("tovik_iot"))))
{
    for (const PropertyTovikIotDataItem& item : qAsConst(property_.dataitems)) {
        if (!items_.contains(item.name))
            items_[item.name] = {item.dataitem_id, initialBytes(item), false};
    }
    connect(this, &DrvInterface::SigGetValuesByteArray, this, &FakeDriver::onRead);
    connect(this, &DrvInterface::SigSetValuesByteArray, this, &FakeDriver::onWrite);
    connect(link, &DrvEthernet::EmitNotifyBeforeRelease, this, &FakeDriver::onRelease);
    connect(&connect_timer_, &QTimer::timeout, this, &FakeDriver::connectOnce);
    connect(&cycle_timer_, &QTimer::timeout, this, &FakeDriver::cycle);
    connect_timer_.start(connect_milliseconds);
    tell("connected", false);
    tell("write_count", write_count_);
    tell("failed_write_count", failed_write_count_);
    tellAges();
    qDebug() << "[Fake] error handling" << link->driver_specific_data.size() << "settings, type"
             << link->GetDriverSpecificData(QStringLiteral("tovik_iot_err_handle_type")).toInt();
}

FakeDriver::~FakeDriver()
{
    qDebug() << (released_ ? "[Fake] deleted after release" : "[Fake] deleted without release");
}

/// As the real driver tells it, by a property.
void FakeDriver::tell(const char* property, const QVariant& value)
{
    if (property_.project != QLatin1String("older"))
        setProperty(property, value);
}

void FakeDriver::tellAges()
{
    const bool stalls = property_.project == QLatin1String("stalls");
    const int age = stalls && cycles_ > 1 && cycles_ <= stalled_cycles ? 2000 * (cycles_ - 1) : 0;
    QVariantList ages;
    for (const PropertyTovikIotDataItem& item : qAsConst(property_.dataitems))
        ages << (items_.value(item.name).has_value ? age : -1);
    tell("item_ages", ages);
    tell("cycle_count", whole_cycles_);
}

void FakeDriver::connectOnce()
{
    ++attempts_;
    if (property_.project == QLatin1String("refused"))
        status_ = status_1;
    else if (property_.project == QLatin1String("unreachable"))
        status_ = status_256;
    else if (property_.project == QLatin1String("late"))
        status_ = attempts_ < 3 ? status_256 : 0;
    const bool slow = property_.project == QLatin1String("slow");
    if (slow || status_ != 0)
        return;
    connect_timer_.stop();
    tell("connected", true);
    cycle_timer_.start(cycle_milliseconds);
    // A connection after an error is not announced.
    if (attempts_ == 1)
        say("[TOVIK IoT] Connected to Cloud Success!");
}

void FakeDriver::cycle()
{
    bool is_whole = true;
    for (Item& item : items_) {
        if (item.id == QLatin1String("bad")) {
            status_ = status_7;
            is_whole = false;
            break;
        }
        if (item.id == QLatin1String("keep"))
            continue;
        item.cached = serviceValue(item.id, cycles_);
        item.has_value = true;
    }
    ++cycles_;
    whole_cycles_ += is_whole ? 1 : 0;
    tellAges();
}

void FakeDriver::onRead(QString unit, QString link, int, QSharedPointer<AddrData> address)
{
    if (property_.project == QLatin1String("mute"))
        return;
    QByteArray bytes(1, '\0');
    if (items_.contains(address->address))
        bytes = items_.value(address->address).cached.leftJustified(address->data_length, '\0');
    Q_EMIT SigResponse(unit, link, bytes, status_);
}

void FakeDriver::onWrite(QString unit, QString link, int, const QByteArray& bytes,
                         QSharedPointer<AddrData> address)
{
    Item& item = items_[address->address];
    item.cached = bytes;
    const QString id = item.id;
    QTimer::singleShot(30, this, [this, id, bytes] { finishWrite(id, bytes); });
    Q_EMIT SigResponse(unit, link, bytes, status_);
}

void FakeDriver::finishWrite(const QString& id, const QByteArray& bytes)
{
    if (id.startsWith(QLatin1String("lost:")))
        return;
    const bool is_refused = id.startsWith(QLatin1String("ro:"));
    const bool is_garbled = id.startsWith(QLatin1String("garbled:"));
    if (is_refused || is_garbled || id.startsWith(QLatin1String("oddcode:"))) {
        tell("failed_write_count", ++failed_write_count_);
        say("[TOVIK IoT] Write value fail!");
        if (is_refused || is_garbled) {
            const int status = is_refused ? status_8 : status_256;
            QTimer::singleShot(50, this, [this, status] { status_ = status; });
        }
        return;
    }
    if (!id.startsWith(QLatin1String("forgets:")))
        writtenValues()[id] = bytes;
    tell("write_count", ++write_count_);
    say("[TOVIK IoT] Write value done!");
}

void FakeDriver::onRelease()
{
    connect_timer_.stop();
    cycle_timer_.stop();
    released_ = true;
}
