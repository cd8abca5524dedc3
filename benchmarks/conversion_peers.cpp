#include "benchmarks/conversion_peers.h"

#include <QtEndian>

#include <cstring>
#include <limits>

// Each function does what its type needs and nothing else, in the most direct way that Qt offers.
// Numbers have a defined result for every input, as the library's. Nothing here calls the library.

namespace bench {

namespace {

template <typename Whole>
Whole saturated(double number)
{
    typedef std::numeric_limits<Whole> Limits;
    if (!(number > double(Limits::min())))
        return number <= double(Limits::min()) ? Limits::min() : Whole(0);
    return number >= double(Limits::max()) ? Limits::max() : static_cast<Whole>(number);
}

template <typename Number>
QByteArray leastFirst(Number number)
{
    const Number ordered = qToLittleEndian(number);
    return QByteArray(reinterpret_cast<const char*>(&ordered), int(sizeof ordered));
}

template <typename Number>
Number fromLeastFirst(const QByteArray& bytes)
{
    return bytes.size() < int(sizeof(Number)) ? Number(0)
                                              : qFromLittleEndian<Number>(bytes.constData());
}

/// Digit by digit; 0 if one of them is above 9.
quint32 decimalOfBcd(quint32 bcd)
{
    quint32 number = 0;
    for (int shift = 28; shift >= 0; shift -= 4) {
        const quint32 digit = (bcd >> shift) & 0xF;
        if (digit > 9)
            return 0;
        number = number * 10 + digit;
    }
    return number;
}

QVariant bitFromJson(const picojson::value& json)
{
    return QVariant(json.get<bool>());
}

QVariant int16FromJson(const picojson::value& json)
{
    return QVariant::fromValue<short>(short(saturated<qint32>(json.get<double>())));
}

QVariant uint16FromJson(const picojson::value& json)
{
    return QVariant::fromValue<unsigned short>(
        static_cast<unsigned short>(saturated<quint32>(json.get<double>()) & 0xFFFF));
}

QVariant int32FromJson(const picojson::value& json)
{
    return QVariant(saturated<qint32>(json.get<double>()));
}

QVariant uint32FromJson(const picojson::value& json)
{
    return QVariant(saturated<quint32>(json.get<double>()));
}

QVariant floatFromJson(const picojson::value& json)
{
    return QVariant(static_cast<float>(json.get<double>()));
}

QVariant textFromJson(const picojson::value& json)
{
    const std::string& text = json.get<std::string>();
    return QVariant(QString::fromLatin1(text.data(), int(text.size())));
}

picojson::value bitToJson(const QVariant& value)
{
    return picojson::value(value.toBool());
}

picojson::value int32ToJson(const QVariant& value)
{
    return picojson::value(double(value.toInt()));
}

picojson::value uint32ToJson(const QVariant& value)
{
    return picojson::value(double(value.toUInt()));
}

picojson::value floatToJson(const QVariant& value)
{
    return picojson::value(double(value.toFloat()));
}

picojson::value textToJson(const QVariant& value)
{
    const QByteArray text = value.toString().toLatin1();
    return picojson::value(text.constData(), std::size_t(text.size()));
}

QByteArray bitToHost(const QVariant& value, int)
{
    return QByteArray(1, value.toBool() ? '\x01' : '\0');
}

QByteArray int16ToHost(const QVariant& value, int)
{
    return leastFirst(qint16(value.toInt()));
}

QByteArray uint16ToHost(const QVariant& value, int)
{
    return leastFirst(quint16(value.toUInt()));
}

QByteArray int32ToHost(const QVariant& value, int)
{
    return leastFirst(qint32(value.toInt()));
}

QByteArray uint32ToHost(const QVariant& value, int)
{
    return leastFirst(quint32(value.toUInt()));
}

QByteArray digits16ToHost(const QVariant& value, int)
{
    return leastFirst(value.toString().toUShort(nullptr, 16));
}

QByteArray digits32ToHost(const QVariant& value, int)
{
    return leastFirst(quint32(value.toString().toUInt(nullptr, 16)));
}

QByteArray floatToHost(const QVariant& value, int)
{
    const float number = value.toFloat();
    quint32 bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return leastFirst(bits);
}

QByteArray textToHost(const QVariant& value, int data_length)
{
    return value.toString().toLatin1().leftJustified(data_length, '\0');
}

QVariant bitFromHost(const QByteArray& bytes)
{
    return QVariant(!bytes.isEmpty() && bytes.at(0) != '\0');
}

QVariant int16FromHost(const QByteArray& bytes)
{
    return QVariant(int(fromLeastFirst<qint16>(bytes)));
}

QVariant uint16FromHost(const QByteArray& bytes)
{
    return QVariant(int(fromLeastFirst<quint16>(bytes)));
}

QVariant int32FromHost(const QByteArray& bytes)
{
    return QVariant(int(fromLeastFirst<qint32>(bytes)));
}

QVariant uint32FromHost(const QByteArray& bytes)
{
    return QVariant(uint(fromLeastFirst<quint32>(bytes)));
}

QVariant bcd16FromHost(const QByteArray& bytes)
{
    return QVariant(int(decimalOfBcd(fromLeastFirst<quint16>(bytes))));
}

QVariant bcd32FromHost(const QByteArray& bytes)
{
    return QVariant(uint(decimalOfBcd(fromLeastFirst<quint32>(bytes))));
}

QVariant hex16FromHost(const QByteArray& bytes)
{
    return QVariant(QByteArray::number(fromLeastFirst<quint16>(bytes), 16));
}

QVariant hex32FromHost(const QByteArray& bytes)
{
    return QVariant(QByteArray::number(fromLeastFirst<quint32>(bytes), 16));
}

QVariant floatFromHost(const QByteArray& bytes)
{
    char raw[4] = {0, 0, 0, 0};
    std::memcpy(raw, bytes.constData(), std::size_t(qMin(bytes.size(), 4)));
    const quint32 bits = qFromLittleEndian<quint32>(raw);
    float number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return QVariant(number);
}

QVariant textFromHost(const QByteArray& bytes)
{
    return QVariant(QString::fromLatin1(bytes.constData(),
                                        int(qstrnlen(bytes.constData(), uint(bytes.size())))));
}

} // namespace

const std::vector<ConversionPeer>& conversionPeers()
{
    static const std::vector<ConversionPeer> peers = {
        {"Bit", bitFromJson, bitToJson, bitToHost, bitFromHost},
        {"16Bit-BCD", uint16FromJson, uint32ToJson, digits16ToHost, bcd16FromHost},
        {"16Bit-INT", int16FromJson, int32ToJson, int16ToHost, int16FromHost},
        {"16Bit-UINT", uint16FromJson, uint32ToJson, uint16ToHost, uint16FromHost},
        {"16Bit-HEX", textFromJson, textToJson, digits16ToHost, hex16FromHost},
        {"32Bit-BCD", uint32FromJson, uint32ToJson, digits32ToHost, bcd32FromHost},
        {"32Bit-INT", int32FromJson, int32ToJson, int32ToHost, int32FromHost},
        {"32Bit-UINT", uint32FromJson, uint32ToJson, uint32ToHost, uint32FromHost},
        {"32Bit-HEX", textFromJson, textToJson, digits32ToHost, hex32FromHost},
        {"32Bit-FLOAT", floatFromJson, floatToJson, floatToHost, floatFromHost},
        {"String", textFromJson, textToJson, textToHost, textFromHost},
    };
    return peers;
}

} // namespace bench
