#include "tools/host/driver/device_config.h"

#include "tools/host/terminal/exit_code.h"

#include <QHostAddress>
#include <QStringList>

namespace tovik_host::driver {

namespace {

/// A word of an address and what it stands for.
template <typename Value>
struct Word
{
    const char* text;
    Value value;
};

const Word<BaudRateType> baud_rates[] = {
    {"50", BAUD50},         {"75", BAUD75},         {"110", BAUD110},       {"134", BAUD134},
    {"150", BAUD150},       {"200", BAUD200},       {"300", BAUD300},       {"600", BAUD600},
    {"1200", BAUD1200},     {"1800", BAUD1800},     {"2400", BAUD2400},     {"4800", BAUD4800},
    {"9600", BAUD9600},     {"19200", BAUD19200},   {"38400", BAUD38400},   {"57600", BAUD57600},
    {"115200", BAUD115200}, {"230400", BAUD230400}, {"460800", BAUD460800}, {"921600", BAUD921600},
};
const Word<DataBitsType> data_bits[] = {{"5", DATA_5}, {"6", DATA_6}, {"7", DATA_7}, {"8", DATA_8}};
const Word<ParityType> parities[] = {
    {"N", PAR_NONE}, {"E", PAR_EVEN}, {"O", PAR_ODD}, {"M", PAR_MARK}, {"S", PAR_SPACE}};
const Word<StopBitsType> stop_bits[] = {{"1", STOP_1}, {"2", STOP_2}};
const Word<FlowType> flows[] = {
    {"none", FLOW_OFF}, {"rtscts", FLOW_HARDWARE}, {"xonxoff", FLOW_XONXOFF}};

/// Whether \a text is one of \a words; if so, \a value becomes what it stands for.
template <typename Value, std::size_t count>
bool readWord(const Word<Value> (&words)[count], const QString& text, Value* value)
{
    for (const Word<Value>& word : words) {
        if (text.compare(QLatin1String(word.text), Qt::CaseInsensitive) == 0) {
            *value = word.value;
            return true;
        }
    }
    return false;
}

template <typename Value, std::size_t count>
QString wordFor(const Word<Value> (&words)[count], Value value)
{
    for (const Word<Value>& word : words) {
        if (word.value == value)
            return QString::fromLatin1(word.text);
    }
    return QString();
}

template <typename Value, std::size_t count>
QString allWords(const Word<Value> (&words)[count])
{
    QStringList texts;
    for (const Word<Value>& word : words)
        texts << QString::fromLatin1(word.text);
    return texts.join(u", "_s);
}

/// One address while it is read, for messages.
struct Source
{
    QString text;
    QString origin;

    [[noreturn]] void fail(const QString& problem) const
    {
        throw terminal::UsageError(u"%1: \"%2\": %3"_s.arg(origin, text, problem));
    }
};

TcpAddress parseTcp(const Source& source, const QString& rest)
{
    const QString form = u"write tcp:HOST:PORT, such as tcp:192.168.1.5:502"_s;
    if (rest.contains(u'/'))
        source.fail(u"a link has no slashes: "_s + form);
    const bool bracketed = rest.startsWith(u'[');
    const int end = bracketed ? rest.indexOf(u']') : -1;
    if (bracketed && end < 0)
        source.fail(u"the bracket is not closed: write tcp:[IPV6-ADDRESS]:PORT"_s);
    const int colon = rest.indexOf(u':', end + 1);
    if (!bracketed && rest.count(u':') > 1) {
        source.fail(
            u"an IPv6 address goes into brackets: tcp:[::1]:502; other hosts have no colon"_s);
    }
    if (colon < 0)
        source.fail(u"the port is missing: "_s + form);
    TcpAddress address;
    address.host = bracketed ? rest.mid(1, end - 1) : rest.left(colon);
    if (address.host.trimmed().isEmpty())
        source.fail(u"the host is missing: "_s + form);
    if (bracketed && (colon != end + 1 ||
                      QHostAddress(address.host).protocol() != QAbstractSocket::IPv6Protocol)) {
        source.fail(u"only an IPv6 address goes into brackets, and the port right after them: "
                    "tcp:[::1]:502"_s);
    }
    const QString port = rest.mid(colon + 1);
    bool is_number = false;
    address.port = port.toUShort(&is_number);
    if (!is_number || address.port == 0)
        source.fail(u"\"%1\" is no port: 1 to 65535"_s.arg(port));
    return address;
}

void parseFrame(const Source& source, const QString& frame, SerialAddress* address)
{
    const bool read = frame.size() == 3 &&
                      readWord(data_bits, frame.left(1), &address->data_bits) &&
                      readWord(parities, frame.mid(1, 1), &address->parity) &&
                      readWord(stop_bits, frame.mid(2), &address->stop_bits);
    if (!read) {
        source.fail(
            u"\"%1\" is no frame such as 8N1: data bits 5 to 8, then parity N (none), E (even), O "
            "(odd), M (mark) or S (space), then stop bits 1 or 2"_s.arg(frame));
    }
}

SerialAddress parseSerial(const Source& source, const QString& rest)
{
    const QStringList parts = rest.split(u',');
    SerialAddress address;
    address.device = parts.first().trimmed();
    if (address.device.isEmpty()) {
        source.fail(u"the device is missing: write serial:DEVICE,BAUD,FRAME, such as "
                    "serial:/dev/ttyUSB0,9600,8N1"_s);
    }
    if (parts.size() > 4) {
        source.fail(u"too many parts: there are device, speed, frame and flow control, such as "
                    "serial:/dev/ttyS0,19200,8E1,none"_s);
    }
    if (parts.size() > 1 && !readWord(baud_rates, parts.at(1), &address.baud_rate)) {
        source.fail(u"\"%1\" is no speed; after the device comes one of: %2"_s.arg(
            parts.at(1), allWords(baud_rates)));
    }
    if (parts.size() > 2)
        parseFrame(source, parts.at(2), &address);
    if (parts.size() > 3 && !readWord(flows, parts.at(3), &address.flow)) {
        source.fail(
            u"\"%1\" is no flow control; it is one of: %2"_s.arg(parts.at(3), allWords(flows)));
    }
    return address;
}

QString tcpText(const TcpAddress& tcp)
{
    const QString host = tcp.host.contains(u':') ? u"[%1]"_s.arg(tcp.host) : tcp.host;
    return u"tcp:%1:%2"_s.arg(host).arg(tcp.port);
}

QString serialText(const SerialAddress& serial)
{
    const QString text = u"serial:%1,%2,%3%4%5"_s.arg(
        serial.device, wordFor(baud_rates, serial.baud_rate), wordFor(data_bits, serial.data_bits),
        wordFor(parities, serial.parity), wordFor(stop_bits, serial.stop_bits));
    return serial.flow == FLOW_OFF ? text : text + u',' + wordFor(flows, serial.flow);
}

} // namespace

LinkAddress parseLink(const QString& text, const QString& origin)
{
    const Source source = {text, origin};
    const QString tcp = u"tcp:"_s;
    const QString serial = u"serial:"_s;
    if (text.startsWith(tcp))
        return parseTcp(source, text.mid(tcp.size()));
    if (text.startsWith(serial))
        return parseSerial(source, text.mid(serial.size()));
    if (text.startsWith(u'/'))
        source.fail(u"write serial: before a device"_s);
    source.fail(
        u"a link is tcp:HOST:PORT or serial:DEVICE,BAUD,FRAME, such as tcp:192.168.1.5:502 or "
        "serial:/dev/ttyUSB0,9600,8N1"_s);
}

QString linkText(const LinkAddress& address)
{
    if (const TcpAddress* tcp = std::get_if<TcpAddress>(&address))
        return tcpText(*tcp);
    return serialText(std::get<SerialAddress>(address));
}

} // namespace tovik_host::driver
