#include "tools/host/value/metrics.h"

#include "tools/host/value/status_text.h"

#include <QObject>
#include <QVariant>

namespace tovik_host::value {

namespace {

/// The rate is that of so many milliseconds, so that it neither jumps with each cycle nor keeps up
/// what has long ended.
const qint64 longest_memory = 10000;
const qint64 shortest_memory = 2000;

/// A count; nothing if the driver has no such property.
template <typename Number>
std::optional<Number> countOf(const QObject& driver, const char* name)
{
    const QVariant value = driver.property(name);
    bool is_number = false;
    const qlonglong number = value.toLongLong(&is_number);
    return is_number ? std::optional<Number>(Number(number)) : std::nullopt;
}

/// A time; nothing if there is no such property, or no time yet.
std::optional<int> timeOf(const QVariant& value)
{
    bool is_number = false;
    const int time = value.toInt(&is_number);
    return is_number && time >= 0 ? std::optional<int>(time) : std::nullopt;
}

QString secondsText(int milliseconds)
{
    return u"%1 s"_s.arg(milliseconds / 1000.0, 0, 'f', 2);
}

QString cycleText(const DriverNumbers& numbers)
{
    if (!numbers.cycle)
        return u"no whole cycle yet"_s;
    QString text = u"cycle %1"_s.arg(secondsText(*numbers.cycle));
    if (numbers.longest_cycle)
        text += u" (longest %1)"_s.arg(secondsText(*numbers.longest_cycle));
    return text;
}

QString errorText(const DriverNumbers& numbers, const QDateTime& now)
{
    if (*numbers.last_error == 0)
        return u"no error"_s;
    QString text = u"last error: %1"_s.arg(resultText(*numbers.last_error));
    if (numbers.last_error_age) {
        const QDateTime time = now.addMSecs(-*numbers.last_error_age);
        text += u" at %1"_s.arg(time.toString(u"HH:mm:ss"_s));
    }
    return text;
}

} // namespace

DriverNumbers readNumbers(const QObject& driver)
{
    DriverNumbers numbers;
    numbers.cycle_count = countOf<int>(driver, "cycle_count");
    numbers.cycle = timeOf(driver.property("cycle_milliseconds"));
    numbers.longest_cycle = timeOf(driver.property("longest_cycle_milliseconds"));
    numbers.read_count = countOf<uint>(driver, "read_count");
    numbers.write_count = countOf<uint>(driver, "write_count");
    numbers.failed_write_count = countOf<uint>(driver, "failed_write_count");
    numbers.reconnect_count = countOf<int>(driver, "reconnect_count");
    const QVariant connected = driver.property("connected");
    if (connected.type() == QVariant::Bool)
        numbers.connected = connected.toBool();
    numbers.last_error = countOf<int>(driver, "last_error");
    numbers.last_error_age = timeOf(driver.property("last_error_age"));
    const QVariant ages = driver.property("item_ages");
    numbers.tells_ages = ages.type() == QVariant::List;
    const QVariantList list = ages.toList();
    for (const QVariant& age : list)
        numbers.ages << timeOf(age);
    return numbers;
}

void ReadRate::take(qint64 moment, uint read_count)
{
    samples_.push_back({moment, read_count});
    while (samples_.size() > 2 && samples_[1].moment <= moment - longest_memory)
        samples_.pop_front();
}

std::optional<double> ReadRate::perSecond() const
{
    if (samples_.empty())
        return std::nullopt;
    const Sample& first = samples_.front();
    const Sample& last = samples_.back();
    const qint64 span = last.moment - first.moment;
    if (span < shortest_memory)
        return std::nullopt;
    // Unsigned, so that it is right when the driver's count starts again at 0.
    const uint reads = last.read_count - first.read_count;
    return reads * 1000.0 / double(span);
}

QString numbersText(const DriverNumbers& numbers, const std::optional<double>& reads_per_second,
                    const QDateTime& now)
{
    QStringList parts;
    if (numbers.cycle_count)
        parts << cycleText(numbers);
    if (reads_per_second)
        parts << u"%1 reads/s"_s.arg(*reads_per_second, 0, 'f', 1);
    if (numbers.reconnect_count) {
        parts << u"%1 %2"_s.arg(*numbers.reconnect_count)
                     .arg(*numbers.reconnect_count == 1 ? u"reconnect"_s : u"reconnects"_s);
    }
    if (numbers.last_error)
        parts << errorText(numbers, now);
    return parts.join(u", "_s);
}

} // namespace tovik_host::value
