#include "fuzz/protocol_areas.h"
#include "fuzz/target.h"

#include "framework/protocol_basic.h"
#include "fuzz/memory.h"

#include <QList>

#include <cstdlib>

namespace fuzz {

namespace {

const int unsupported_base = 37;

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

int digitOf(char c)
{
    return isHexDigit(c) ? int(std::strtol(QByteArray(1, c).constData(), nullptr, 16)) : 0;
}

void byteOrder(Input* input)
{
    const int order = input->signed32();
    const quint16 half = input->number16();
    const quint32 number = input->number32();
    require(ProtocolBasic::byteOrderChange(ProtocolBasic::byteOrderChange(half, order), order) ==
                    half &&
                ProtocolBasic::byteOrderChange(ProtocolBasic::byteOrderChange(number, order),
                                               order) == number,
            "bytes that are swapped twice are as before");
    require(order != ProtocolBasic::hostByteOrder() ||
                ProtocolBasic::byteOrderChange(number, order) == number,
            "the host's own order swaps nothing");
}

void digits(Input* input)
{
    const int len = input->signed32();
    const QByteArray source = input->rest();
    Memory values(source);
    Memory characters(source);
    const int used = qMin(len, source.size()); // the caller's promise: so many bytes are there
    require(ProtocolBasic::ascii2Hex(values.data(), used) == (used > 0) &&
                ProtocolBasic::hex2Ascii(characters.data(), used) == (used > 0),
            "nothing is done exactly for a length below 1");
    for (int i = 0; i < source.size(); ++i) {
        const char byte = source.at(i);
        const int number = static_cast<unsigned char>(byte);
        const bool changed = i < used;
        require(values.data()[i] == (changed ? char(digitOf(byte)) : byte),
                "a character becomes its digit");
        require(characters.data()[i] ==
                    (changed ? char(number > 9 ? number + 55 : number + '0') : byte),
                "a digit becomes its character");
    }
    require(!ProtocolBasic::ascii2Hex(nullptr, len) && !ProtocolBasic::hex2Ascii(nullptr, len),
            "null is refused");
}

void numbersOfBytes(Input* input)
{
    const int order = input->signed32();
    const int ascii = input->byte();
    const quint32 number = input->number32();
    QByteArray one, two, four;
    ProtocolBasic::addNumber(one, static_cast<unsigned char>(number & 0xFF), ascii);
    ProtocolBasic::addNumber(two, static_cast<unsigned short>(number & 0xFFFF), order, ascii);
    ProtocolBasic::addNumber(four, number, order, ascii);
    const int width = ascii != 0 ? 2 : 1;
    require(one.size() == width && two.size() == 2 * width && four.size() == 4 * width,
            "a number has its size in bytes or characters");
    require(quint32(ProtocolBasic::array2Number(one, order, ascii)) == (number & 0xFF) &&
                quint32(ProtocolBasic::array2Number(two, order, ascii)) == (number & 0xFFFF) &&
                quint32(ProtocolBasic::array2Number(four, order, ascii)) == number,
            "a number comes back from its bytes");

    const QByteArray any = input->rest();
    const int found = ProtocolBasic::array2Number(any, order, ascii);
    if (ascii == 0) {
        const QByteArray counting = order != 0 ? any.left(4) : any.right(4);
        require(ProtocolBasic::array2Number(counting, order, ascii) == found,
                "of a long array the four least significant bytes count");
    }
}

void numberAsText(Input* input)
{
    const int base = input->choice(unsupported_base + 2) - 1;
    const int width = qint8(input->byte());
    const int value = input->signed32();
    const QByteArray text = ProtocolBasic::number2Str(value, width, base);
    const QByteArray magnitude = ProtocolBasic::number2Str(quint32(value), width, base);
    const bool good = base >= 2 && base <= 36 && width <= 32;
    require(good != text.isNull() && good != magnitude.isNull(),
            "exactly a bad base or width gives a null array");
    if (!good)
        return;
    require(text.size() <= 33 && magnitude.size() <= 32, "a number has at most 32 digits");
    require(magnitude.size() >= width, "an unsigned number fills its width");
    require(quint32(std::strtoull(magnitude.constData(), nullptr, base)) == quint32(value),
            "the text is the number");
    if (base <= 16) // the digits that are read back
        require(ProtocolBasic::str2Number(text, base) == value,
                "a number comes back from its text");
}

void textAsNumber(Input* input)
{
    const int base = input->choice(unsupported_base + 2) - 1;
    const QByteArray text = input->rest();
    const int number = ProtocolBasic::str2Number(text, base);
    require(base >= 2 && base <= 36 ? true : number == 0, "a bad base gives 0");
    require(ProtocolBasic::str2Number(text.split('\0').first(), base) == number,
            "what stands after a zero byte does not count");
    if (!text.contains('-') && !text.contains('\0'))
        require(quint32(ProtocolBasic::str2Number(text + '-', base)) == 0U - quint32(number),
                "a minus anywhere makes it negative");
}

void digitBases(Input* input)
{
    const int value = input->signed32();
    const int to = input->signed32();
    const int from = input->signed32();
    ProtocolBasic protocol;
    protocol.digitBaseTransform(value, to, from);
    protocol.digitBaseTransform(value, qint8(to), qint8(from));
    const int decimal = int(quint32(value) % 100000000);
    const int bcd = protocol.digitBaseTransform(decimal, 16, 10);
    if (bcd >= 0) // a first digit of 8 or 9 makes it negative, and another number
        require(protocol.digitBaseTransform(bcd, 10, 16) == decimal, "BCD goes there and back");
}

using Check = void (*)(Input*);

const Check checks[] = {byteOrder, digits, numbersOfBytes, numberAsText, textAsNumber, digitBases,
                        dataArea,  array,  areaInPlace,    oddElements,  outOfAnArea};
const int check_count = int(sizeof checks / sizeof checks[0]);

} // namespace

// A byte for the operations, then their arguments.
void runProtocol(const QByteArray& input)
{
    Input next(input);
    checks[next.choice(check_count)](&next);
}

} // namespace fuzz
