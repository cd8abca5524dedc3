#include "tools/host/value/trace.h"

#include "tools/host/terminal/text.h"

#include <QDateTime>
#include <QMutexLocker>

#include <cstdlib>
#include <unistd.h>

namespace tovik_host::value {

namespace {

const int bytes_of_line = 16;
const int microseconds = 1000000;

/// As wide as what stands in front of the first line of an event.
QString indent()
{
    return QString(28, u' ');
}

QString textOf(const QByteArray& bytes)
{
    QString text;
    for (const char byte : bytes)
        text += QLatin1Char(byte >= ' ' && byte <= '~' ? byte : '.');
    return text;
}

QString millisecondsText(qint64 time)
{
    return u"%1 ms"_s.arg(double(time) / 1000, 0, 'f', 1);
}

} // namespace

/// Moment, and time since the event before.
QString TrafficText::start(qint64 time)
{
    const qint64 gap = latest_ == 0 ? 0 : time - latest_;
    latest_ = time;
    const QString clock = QDateTime::fromMSecsSinceEpoch(time / 1000).toString(u"HH:mm:ss"_s);
    return u"%1.%2 %3%4 "_s.arg(clock)
        .arg(time % microseconds, 6, 10, QLatin1Char('0'))
        .arg(QLatin1Char(gap < 0 ? '-' : '+'))
        .arg(double(std::abs(gap)) / microseconds, 0, 'f', 6);
}

QStringList TrafficText::dump(qint64 time, const char* arrow, const QByteArray& bytes,
                              const QString& more)
{
    QStringList lines;
    for (int at = 0; at < bytes.size(); at += bytes_of_line) {
        const QByteArray part = bytes.mid(at, bytes_of_line);
        const QString hex = QString::fromLatin1(part.toHex(' ').toUpper());
        const bool is_last = at + bytes_of_line >= bytes.size();
        lines << u"%1%2 %3  |%4|%5"_s.arg(
            at == 0 ? start(time) : indent(), at == 0 ? QLatin1String(arrow) : QLatin1String("  "),
            hex.leftJustified(bytes_of_line * 3 - 1), textOf(part), is_last ? more : QString());
    }
    return lines;
}

QStringList TrafficText::rest()
{
    if (held_.isEmpty())
        return QStringList();
    const QString more = held_pieces_ == 1 ? QString()
                                           : u"  %1 pieces in %2"_s.arg(held_pieces_)
                                                 .arg(millisecondsText(held_last_ - held_first_));
    const QStringList lines = dump(held_first_, "<<", held_, more);
    latest_ = held_last_;
    held_.clear();
    held_pieces_ = 0;
    return lines;
}

QStringList TrafficText::linesOf(const Traffic& traffic)
{
    if (traffic.kind == Traffic::taken) {
        held_first_ = held_.isEmpty() ? traffic.time : held_first_;
        held_last_ = traffic.time;
        held_ += traffic.bytes;
        ++held_pieces_;
        return QStringList();
    }
    QStringList lines = rest();
    switch (traffic.kind) {
    case Traffic::sent:
        return lines + dump(traffic.time, ">>", traffic.bytes, QString());
    case Traffic::discarded:
        return lines + dump(traffic.time, "xx", traffic.bytes,
                            u"  came too late, or unasked: thrown away"_s);
    case Traffic::ended:
        return lines << start(traffic.time) + u"== "_s + statusTextWithCode(traffic.code, whose_);
    default:
        return lines + service(traffic);
    }
}

QStringList TrafficText::service(const Traffic& traffic)
{
    QString text;
    switch (traffic.kind) {
    case Traffic::asked:
        asked_ = traffic.time;
        text = u">> "_s + traffic.text;
        break;
    case Traffic::named:
        text = u"   name looked up: "_s + traffic.text;
        break;
    case Traffic::connected:
        text = u"   connected"_s;
        break;
    case Traffic::encrypted:
        text = u"   TLS handshake done"_s;
        break;
    case Traffic::answering:
        text = u"   first byte"_s + (traffic.code == 1 ? u", TLS session resumed"_s : QString());
        break;
    default:
        text = u"<< "_s + (traffic.code == 0 ? u"no answer"_s : u"HTTP %1"_s.arg(traffic.code)) +
               u" after "_s + millisecondsText(traffic.time - asked_);
        if (!traffic.text.isEmpty())
            text += u": "_s + traffic.text;
    }
    QStringList lines(start(traffic.time) +
                      u"#%1 %2"_s.arg(traffic.number).arg(terminal::printable(text)));
    if (!traffic.bytes.isEmpty())
        lines << indent() + terminal::printable(QString::fromUtf8(traffic.bytes));
    return lines;
}

Trace::Trace(const QString& path)
{
    if (!path.isEmpty())
        file_.emplace(u"the trace"_s, path);
}

Trace::~Trace()
{
    write(text_.rest());
}

void Trace::hear(const Traffic& traffic)
{
    const QMutexLocker locker(&lock_);
    write(text_.linesOf(traffic));
}

/// At once, so that the lines of two threads do not mix.
void Trace::write(const QStringList& lines)
{
    if (lines.isEmpty())
        return;
    const QString text = lines.join(u'\n');
    if (file_)
        file_->line(text);
    else
        terminal::Output(STDERR_FILENO).line(text);
}

} // namespace tovik_host::value
