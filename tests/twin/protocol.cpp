#include "framework/protocol_basic.h"
#include "tests/twin/transcript.h"
#include "tests/twin/twin.h"

#include <QList>

namespace {

const unsigned values[] = {0,          1,          9,          10,        0x12,   0x7F,
                           0x80,       0xFF,       0x1234,     0x7FFF,    0x8000, 0xFFFF,
                           0x12345678, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

QByteArray number(long long value)
{
    return QByteArray::number(value);
}

void singleCharacters()
{
    section("characters");
    for (int i = 0; i < 256; ++i) {
        QByteArray both(2, char(i));
        const bool done = ProtocolBasic::ascii2Hex(both.data(), 1);
        say(number(i) + " ascii2Hex " + number(ProtocolBasic::ascii2Hex(char(i))) + ' ' +
            number(done) + ' ' + hex(both) + " hex2Ascii " +
            number(ProtocolBasic::hex2Ascii(char(i))));
    }
    for (int length = -1; length <= 4; ++length) {
        QByteArray digits("3fA9");
        const bool read = ProtocolBasic::ascii2Hex(digits.data(), length);
        const bool written = ProtocolBasic::hex2Ascii(digits.data(), length);
        say("length " + number(length) + ' ' + number(read) + number(written) + ' ' + digits);
    }
}

void numbersInBytes()
{
    section("numbers");
    say("host " + number(ProtocolBasic::hostByteOrder()));
    for (unsigned value : values) {
        for (int order = -1; order <= 2; ++order) {
            const unsigned short half = static_cast<unsigned short>(value);
            say(number(value) + " order " + number(order) + " change " +
                number(ProtocolBasic::byteOrderChange(value, order)) + ' ' +
                number(ProtocolBasic::byteOrderChange(half, order)));
            for (int ascii = 0; ascii <= 1; ++ascii) {
                QByteArray out("<");
                ProtocolBasic::addNumber(out, static_cast<unsigned char>(value), ascii);
                ProtocolBasic::addNumber(out, half, order, ascii);
                ProtocolBasic::addNumber(out, value, order, ascii);
                say("added " + hex(out) + " ascii " + number(ascii));
                for (int size = 0; size <= out.size(); ++size)
                    say("read " + number(size) + ' ' +
                        number(ProtocolBasic::array2Number(out.mid(1, size), order, ascii)));
            }
        }
    }
}

void numbersAsText()
{
    section("texts");
    ProtocolBasic protocol;
    const int bases[] = {-1, 0, 1, 2, 7, 8, 10, 16, 36, 37};
    const int widths[] = {-1, 0, 1, 4, 11, 32, 33};
    for (int base : bases) {
        for (unsigned value : values) {
            for (int width : widths)
                say(number(value) + " base " + number(base) + " width " + number(width) + " '" +
                    ProtocolBasic::number2Str(value, width, base) + "' '" +
                    ProtocolBasic::number2Str(int(value), width, base) + "'");
            for (int other : bases)
                say(number(value) + " digits " + number(base) + " to " + number(other) + ' ' +
                    number(protocol.digitBaseTransform(int(value), other, base)));
        }
        const char* const digits[] = {"",    "0",  "-",  "12",          "-12",
                                      "1-2", "FF", "fz", "99999999999", "1 2"};
        for (const char* text : digits)
            say(QByteArray(text) + " base " + number(base) + ' ' +
                number(ProtocolBasic::str2Number(text, base)));
    }
    sayLog();
}

void dataAreas()
{
    section("areas");
    ProtocolBasic protocol;
    QByteArray source;
    for (int i = 0; i < 16; ++i)
        source.append(char(i * 17 + 1));
    for (int size = -1; size <= 5; ++size) {
        for (int order = -1; order <= 2; ++order) {
            for (int ascii = 0; ascii <= 1; ++ascii) {
                for (int count = -1; count <= 9; ++count) {
                    const QByteArray call = "size " + number(size) + " order " + number(order) +
                                            " ascii " + number(ascii) + " count " + number(count);
                    QByteArray out("<");
                    if (size > 0 && size * count <= source.size()) {
                        const int result = protocol.composeDataArea(&out, source.data(), size,
                                                                    count, order, ascii);
                        say(call + " compose " + number(result) + ' ' + hex(out));
                    }
                    QByteArray added("<");
                    const bool is_added = ProtocolBasic::addArray(added, source.constData(), count,
                                                                  size, order, ascii);
                    say(call + " add " + number(is_added) + ' ' + hex(added));
                    QByteArray taken("x");
                    const bool is_taken = ProtocolBasic::extractArray(taken, source.constData(),
                                                                      count, size, order, ascii);
                    say(call + " take " + number(is_taken) + ' ' + hex(taken));
                    QByteArray target(16, '.');
                    const int result = protocol.extractDataArea(target.data(), &source, 2, count,
                                                                size, order, ascii);
                    say(call + " extract " + number(result) + ' ' + hex(target));
                }
            }
        }
    }
    sayLog();
}

} // namespace

void twinProtocol()
{
    singleCharacters();
    numbersInBytes();
    numbersAsText();
    dataAreas();
}
