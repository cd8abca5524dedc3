#include "tests/reliability/histories/exchange_model.h"

namespace {

const int stopped = 0x1002;
const int not_served = 0x2002;
const int too_late = 0x400A0000;
const int receive_failed = 0x400A0002;
const int wrong_length = 0x20010003;

} // namespace

namespace exchange {

QString answerLine(const QString& unit, const QByteArray& bytes, int code)
{
    return QStringLiteral("answer %1 %2 0x%3")
        .arg(unit, QString::fromLatin1(bytes.toHex()), QString::number(code, 16));
}

QString callLine(const char* hook, const QByteArray& bytes)
{
    return QLatin1String(hook) + QLatin1Char(' ') + QString::fromLatin1(bytes.toHex());
}

} // namespace exchange

using exchange::answerLine;
using exchange::callLine;

ExchangeModel::ExchangeModel(const ExchangeHistory& history) : history_(history) {}

void ExchangeModel::play(const ExchangeEvent& event)
{
    switch (event.kind) {
    case ExchangeEvent::behave:
        world_.planned.push_back(exchange::behaviour(event.a, event.b));
        return;
    case ExchangeEvent::read:
    case ExchangeEvent::write:
        return request(event.kind == ExchangeEvent::read, exchange::unitName(event.a));
    case ExchangeEvent::raw:
        return raw();
    case ExchangeEvent::input:
        if (!world_.is_lost)
            world_.input += QByteArray(event.a, 'z');
        return;
    case ExchangeEvent::link:
        world_.is_lost = event.a == 0;
        return;
    case ExchangeEvent::units:
        world_.units = exchange::unitList(event.a);
        return;
    case ExchangeEvent::stop:
        world_.is_stopped = true;
        return;
    }
}

QStringList ExchangeModel::take()
{
    say(QStringLiteral("clock %1, code 0x%2, %3, %4 bytes wait")
            .arg(world_.now)
            .arg(QString::number(code_, 16))
            .arg(is_stuck_ ? QStringLiteral("locked") : QStringLiteral("free"))
            .arg(world_.input.size()));
    QStringList seen;
    seen.swap(seen_);
    return seen;
}

void ExchangeModel::request(bool is_read, const QString& unit)
{
    const QByteArray written = is_read ? QByteArray() : QByteArray("wb");
    QByteArray data;
    for (int left = history_.retries + 1; left > 0; --left) {
        code_ = 0;
        data = written;
        if (world_.is_stopped) {
            code_ = stopped;
            is_stuck_ = true;
            return;
        }
        if (!isServed(unit)) {
            code_ = not_served;
            break;
        }
        attempt(is_read, &data);
        if (code_ == 0 || code_ == stopped)
            break;
        if (!isServed(unit)) {
            code_ = not_served;
            break;
        }
    }
    say(answerLine(unit, is_read ? data : written, code_));
}

/// A name in braces is served by a list without entries, and by an entry of that name with digits.
bool ExchangeModel::isServed(const QString& unit) const
{
    const bool is_braced = unit.size() > 2 && unit.startsWith(QLatin1Char('{')) &&
                           unit.indexOf(QLatin1Char('}')) == unit.size() - 1;
    if (!is_braced || world_.units.isEmpty())
        return true;
    for (const QString& entry : world_.units) {
        bool is_number = true;
        for (const QChar character : entry.mid(unit.size()))
            is_number = is_number && character.isDigit();
        if (entry.startsWith(unit) && is_number)
            return true;
    }
    return false;
}

void ExchangeModel::attempt(bool is_read, QByteArray* data)
{
    pass(history_.delay);
    const Behaviour behaviour = world_.next();
    say(callLine(is_read ? "build read" : "build write", *data));
    if (behaviour.build_code != 0 || behaviour.built == 0) {
        code_ = behaviour.build_code != 0 ? behaviour.build_code : wrong_length;
        return;
    }
    world_.input.clear();
    if (!world_.is_lost) {
        say(callLine("sent", "request"));
        world_.sent(behaviour);
    }
    bool ready = false;
    const int wait_code = waitFor(behaviour, &ready);
    QByteArray response;
    if (ready)
        response.swap(world_.input);
    if (wait_code != 0 || response.size() != behaviour.built) {
        say(callLine("abnormal", response));
        code_ = behaviour.abnormal_code;
        if (code_ != 0) {
            if (wait_code == not_served || wait_code == stopped || wait_code == too_late) {
                code_ = wait_code;
                if (wait_code != not_served)
                    say(wait_code == stopped ? QStringLiteral("Dcc_Stop")
                                             : QStringLiteral("Command_Timeout"));
            } else if (response.size() == behaviour.built) {
                say(QStringLiteral("Warning: recv failed. Should not be here."));
            } else {
                say(QStringLiteral("Protocol_Invalid_Length: %1 ( %2 )")
                        .arg(response.size())
                        .arg(behaviour.built));
                code_ = wrong_length;
            }
            return;
        }
    }
    say(callLine("parse", response));
    *data += response;
    code_ = behaviour.parse_code;
}

/// In turns of 50 ms, which input ends; whatever is there at the end of a turn counts, late or not.
int ExchangeModel::waitFor(const Behaviour& behaviour, bool* ready)
{
    *ready = behaviour.own_ready;
    if (behaviour.wait == Behaviour::own_code)
        return behaviour.wait_code;
    const qint64 end = world_.now + history_.timeout;
    for (;;) {
        const bool is_there = behaviour.wait == Behaviour::for_line
                                  ? world_.input.contains('\n')
                                  : world_.input.size() >= behaviour.built;
        *ready = !world_.input.isEmpty();
        if (is_there)
            return 0;
        if (world_.is_stopped)
            return stopped;
        if (world_.is_lost)
            return receive_failed;
        if (world_.now >= end)
            return too_late;
        waitForInput(qMin(end - world_.now, qint64(50)));
    }
}

void ExchangeModel::waitForInput(qint64 milliseconds)
{
    const int before = world_.input.size();
    if (world_.is_lost)
        return;
    for (; milliseconds > 0 && world_.input.size() == before; --milliseconds)
        pass(1);
}

void ExchangeModel::pass(qint64 milliseconds)
{
    for (; milliseconds > 0; --milliseconds)
        world_.reach(world_.now + 1);
}

/// Polls, until the number of bytes has stayed the same for eleven of them.
void ExchangeModel::raw()
{
    code_ = 0;
    const Behaviour behaviour = world_.next();
    world_.input.clear();
    if (!world_.is_lost) {
        say(callLine("sent", "raw"));
        world_.sent(behaviour);
    }
    int elapsed = 0;
    int last = 0;
    int unchanged = 0;
    while (unchanged <= 10 && elapsed < history_.timeout) {
        pass(1);
        ++elapsed;
        waitForInput(1);
        const int count = world_.input.size();
        if (count == 0)
            continue;
        unchanged = count == last ? unchanged + 1 : 0;
        last = count;
    }
    QByteArray response;
    if (elapsed < history_.timeout)
        response.swap(world_.input);
    else
        code_ = too_late;
    say(answerLine(QStringLiteral("raw"), response, code_));
}
