#include "tests/reliability/histories/model.h"

#include "tests/reliability/histories/values.h"

#include <algorithm>
#include <limits>

const qint64 Model::never = std::numeric_limits<qint64>::max();

Model::Model(const History& history) : history_(history)
{
    openDriver();
}

void Model::play(const Event& event, const Reply& reply)
{
    switch (event.kind) {
    case Event::read:
        return readItem(event);
    case Event::write:
        for (int i = 0; i < event.c; ++i)
            writeItem(event);
        return;
    case Event::host:
        return deliverToHost();
    case Event::client:
        if (!is_closed_) {
            deliverable_ = sent_;
            stack_.emplace_back(Frame::delivery);
            proceed();
        }
        return;
    case Event::timer:
        return shoot();
    case Event::wait:
        now_ = qMax(now_, qMin(now_ + event.a, nextDue() - 1));
        return;
    case Event::reply:
        return answerPost(event.a, reply);
    case Event::close:
        return closeDriver();
    case Event::open:
        if (is_closed_)
            openDriver();
        return;
    }
}

void Model::openDriver()
{
    // The queued, the outstanding and the counted belong to the one before.
    Model fresh;
    fresh.history_ = history_;
    fresh.seen_ = seen_;
    fresh.now_ = now_;
    fresh.planned_ = planned_;
    *this = fresh;
    is_closed_ = false;
    for (int i = 0; i < int(history_.items.size()); ++i)
        items_.push_back({itemOf(history_, i), QVariant(QString()), -1});
    say("[DrvTovikIot] Initial");
    say(R"([TOVIK IoT] Host:  "https://service"  -> Project:  "Plant")");
    send(ForClient::initial);
}

void Model::closeDriver()
{
    if (is_closed_)
        return;
    say("[DrvTovikIot] Close");
    disconnect();
    is_closed_ = true;
    // The event loops end, the inner ones first, and with them what they waited for.
    quits_ = true;
    proceed();
    to_client_.clear();
    posts_.clear();
    for (Timer& timer : timers_)
        timer.runs = false;
}

int Model::findItem(int index, QString* name) const
{
    const int choice = index % (int(items_.size()) + 1);
    *name = choice < int(items_.size()) ? items_[std::size_t(choice)].served.name
                                        : QStringLiteral("nobody");
    for (int i = 0; i < int(items_.size()); ++i) {
        if (items_[std::size_t(i)].served.name == *name)
            return i;
    }
    return -1;
}

void Model::answer(const QByteArray& bytes)
{
    seen_.answers.append(QString::fromLatin1(bytes.toHex()) + QLatin1Char(' ') +
                         QString::number(err_code_));
}

bool Model::asksByReads() const
{
    if (history_.type == 1)
        return history_.restore_switch && !history_.return_time_en;
    return history_.type == 3;
}

void Model::readItem(const Event& event)
{
    QString name;
    const int index = findItem(event.a, &name);
    QByteArray bytes(1, '\0');
    if (index >= 0) {
        const Item& item = items_[std::size_t(index)];
        bytes = values::toHost(item.served.type, item.value, event.b);
    }
    if (err_code_ == 0) {
        err_count_ = 0;
    } else {
        ++err_count_;
        say(QStringLiteral("[DrvTovikIot] SlotGetValuesByteArray:  %1").arg(err_code_));
        if (err_count_ > 1 && asksByReads()) {
            say(QStringLiteral("[DrvTovikIot] Retry by error handle type:  %1").arg(history_.type));
            err_count_ = 0;
            err_code_ = 0;
            send(ForClient::reconnect);
        }
    }
    answer(bytes);
}

void Model::writeItem(const Event& event)
{
    QString name;
    const int index = findItem(event.a, &name);
    const QByteArray bytes = writtenBytes(event.b);
    if (index >= 0) {
        Item& item = items_[std::size_t(index)];
        item.value = values::fromHost(item.served.type, bytes);
        send(ForClient::write, index, item.value);
    }
    answer(bytes);
}

void Model::deliverToHost()
{
    while (!to_host_.empty()) {
        const ForHost message = to_host_.front();
        to_host_.pop_front();
        if (!message.is_values) {
            static const QList<int> known = {1, 3, 4, 7, 8, 9, 15, 255, 256};
            err_code_ = known.contains(message.result)
                            ? 0x400F0000 + QString::number(message.result).toInt(nullptr, 16)
                            : 0;
            say(QStringLiteral("[DrvTovikIot] Update Error Code:  %1").arg(err_code_));
            continue;
        }
        takeValues(message.values);
        if (untaken() > 0)
            continue;
        for (const ForHost& kept : kept_)
            takeValues(kept.values);
        kept_.clear();
    }
}

int Model::untaken() const
{
    return int(std::count_if(to_host_.begin(), to_host_.end(),
                             [](const ForHost& message) { return message.is_values; }));
}

void Model::takeValues(const std::vector<Monitored>& values)
{
    for (Item& item : items_) {
        for (const Monitored& monitored : values) {
            if (monitored.id != item.served.id)
                continue;
            item.value = monitored.value;
            if (monitored.read_at >= 0)
                item.taken_at = monitored.read_at;
            break;
        }
    }
}

Seen Model::take()
{
    Seen seen;
    std::swap(seen, seen_);
    seen.numbers = {now_,
                    nextDue(),
                    qint64(outstanding().size()),
                    connected_ ? 1 : 0,
                    cycles_,
                    cycle_time_,
                    longest_cycle_,
                    reads_,
                    writes_,
                    failed_writes_,
                    reconnects_,
                    last_error_,
                    failed_at_ < 0 ? -1 : now_ - failed_at_};
    for (const Item& item : items_)
        seen.numbers.push_back(item.taken_at < 0 ? -1 : now_ - item.taken_at);
    return seen;
}

std::vector<Reply::Operation> Model::outstanding() const
{
    std::vector<Reply::Operation> operations;
    for (const auto& numbered : posts_) {
        if (!numbered.second.is_answered)
            operations.push_back(numbered.second.operation);
    }
    return operations;
}

QByteArray Model::kindOfState() const
{
    QByteArray text;
    const auto add = [&text](qint64 number) { text += char('0' + qMin(number, qint64(3))); };
    for (const Frame& frame : stack_) {
        text += "DSACW"[frame.kind];
        if (frame.kind == Frame::attempt)
            text += "LGI"[frame.stage];
        if (frame.post >= 0)
            text += posts_.at(frame.post).is_answered ? '+' : '-';
    }
    for (const Timer& timer : timers_)
        add(timer.runs);
    for (const bool flag : {connected_, is_closed_, is_write_waited_for_, awaited_write_ >= 0,
                            reconnect_goes_off_, token_.isEmpty(), err_code_ != 0})
        add(flag);
    add(err_count_);
    add(attempts_);
    for (const std::size_t size : {to_client_.size(), to_host_.size(), waiting_writes_.size(),
                                   unanswered_writes_.size(), items_.size()})
        add(qint64(size));
    add(reconnectsByTimer());
    add(asksByReads());
    return text;
}
