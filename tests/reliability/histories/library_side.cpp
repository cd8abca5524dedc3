#include "tests/reliability/histories/library_side.h"

#include "property/property_tovik_iot.h"
#include "tests/reliability/histories/virtual_time.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QStringList* recorded = nullptr;

/// Both threads log, never at the same time.
void record(QtMsgType, const QMessageLogContext&, const QString& line)
{
    recorded->append(line);
}

PropertyTovikIot configuration(const History& history)
{
    PropertyTovikIot property;
    property.host = QStringLiteral("https://service");
    property.project = QStringLiteral("Plant");
    property.email = QStringLiteral("a@b");
    property.password = QStringLiteral("secret");
    for (int i = 0; i < int(history.items.size()); ++i) {
        const ServedItem served = itemOf(history, i);
        PropertyTovikIotDataItem item;
        item.name = served.name;
        item.dataitem_id = served.id;
        item.type = served.type;
        property.dataitems.append(item);
    }
    return property;
}

} // namespace

LibrarySide::LibrarySide(const History& history) : history_(history)
{
    recorded = &seen_.lines;
    qInstallMessageHandler(record);
    const auto set = [this](const char* name, const QVariant& value) {
        link_.driver_specific_data[QLatin1String(name)] = value;
    };
    set("tovik_iot", QVariant::fromValue(configuration(history)));
    set("tovik_iot_err_handle_type", history.type);
    set("tovik_iot_err_return_time", history.return_time);
    set("tovik_iot_err_retry_count", 2);
    set("tovik_iot_err_return_time_en", history.return_time_en);
    set("tovik_iot_err_restore_switch_bs_en", history.restore_switch);
    open();
}

LibrarySide::~LibrarySide()
{
    close();
    driver_.reset();
    qInstallMessageHandler(nullptr);
}

void LibrarySide::open()
{
    if (!is_closed_)
        return;
    driver_.reset();
    driver_.reset(new DrvTovikIot(&link_));
    is_closed_ = false;
    QObject::connect(
        driver_.get(), &DrvInterface::SigResponse,
        [this](const QString& unit, const QString& link, const QByteArray& bytes, int status) {
            QString answer =
                QString::fromLatin1(bytes.toHex()) + QLatin1Char(' ') + QString::number(status);
            if (unit != QLatin1String("unit") || link != QLatin1String("link"))
                answer += QStringLiteral(" for another");
            seen_.answers.append(answer);
        });
}

void LibrarySide::close()
{
    if (is_closed_)
        return;
    is_closed_ = true;
    Q_EMIT link_.EmitNotifyBeforeRelease();
}

QSharedPointer<AddrData> LibrarySide::addressOf(const Event& event) const
{
    const int items = int(history_.items.size());
    const int choice = event.a % (items + 1);
    QSharedPointer<AddrData> address(new AddrData);
    address->address = choice < items ? itemOf(history_, choice).name : QStringLiteral("nobody");
    address->data_length = event.kind == Event::read ? event.b : 0;
    return address;
}

void LibrarySide::play(const Event& event, const Reply& reply)
{
    switch (event.kind) {
    case Event::read:
        Q_EMIT driver_->SigGetValuesByteArray(QStringLiteral("unit"), QStringLiteral("link"), 1,
                                              addressOf(event));
        return;
    case Event::write:
        for (int i = 0; i < event.c; ++i) {
            Q_EMIT driver_->SigSetValuesByteArray(QStringLiteral("unit"), QStringLiteral("link"), 1,
                                                  writtenBytes(event.b), addressOf(event));
        }
        return;
    case Event::host:
        QCoreApplication::sendPostedEvents();
        return;
    case Event::client:
        if (!is_closed_)
            stage_.deliver();
        return;
    case Event::timer:
        if (stage_.nextDue() != Stage::never)
            stage_.shoot();
        return;
    case Event::wait:
        virtual_time::now = std::max(virtual_time::now,
                                     std::min(virtual_time::now + event.a, stage_.nextDue() - 1));
        return;
    case Event::reply:
        if (event.a < int(stage_.posts().size()))
            stage_.answer(event.a, reply.body, reply.is_broken);
        return;
    case Event::close:
        return close();
    case Event::open:
        return open();
    }
}

Seen LibrarySide::take()
{
    Seen seen;
    std::swap(seen, seen_);
    seen.requests = stage_.takeRequests();
    seen.numbers = {virtual_time::now,
                    stage_.nextDue(),
                    qint64(stage_.posts().size()),
                    driver_->isConnected() ? 1 : 0,
                    driver_->cycleCount(),
                    driver_->cycleMilliseconds(),
                    driver_->longestCycleMilliseconds(),
                    driver_->readCount(),
                    driver_->writeCount(),
                    driver_->failedWriteCount(),
                    driver_->reconnectCount(),
                    driver_->lastError(),
                    driver_->lastErrorAge()};
    for (const QVariant& age : driver_->itemAges())
        seen.numbers.push_back(age.toInt());
    return seen;
}
