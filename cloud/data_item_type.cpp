#include "cloud/data_item_type.h"

#include "cloud/host_bytes.h"
#include "cloud/json_number.h"
#include "compat/text.h"

#include <QVector>

namespace {

// The service's JSON to the cached variant.

QVariant boolFromJson(const picojson::value& json)
{
    return QVariant(json.get<bool>());
}

QVariant shortFromJson(const picojson::value& json)
{
    const qint32 number = json_number::toInt32(json.get<double>());
    return QVariant::fromValue<short>(host_bytes::signed16(quint32(number)));
}

QVariant unsignedShortFromJson(const picojson::value& json)
{
    const quint32 number = json_number::toUInt32(json.get<double>());
    return QVariant::fromValue<unsigned short>(static_cast<quint16>(number & 0xFFFF));
}

QVariant intFromJson(const picojson::value& json)
{
    return QVariant(json_number::toInt32(json.get<double>()));
}

QVariant unsignedFromJson(const picojson::value& json)
{
    return QVariant(json_number::toUInt32(json.get<double>()));
}

QVariant floatFromJson(const picojson::value& json)
{
    return QVariant(json_number::toFloat(json.get<double>()));
}

QVariant textFromJson(const picojson::value& json)
{
    return QVariant(text::fromLatin1(json.get<std::string>()));
}

// A variant to the JSON of a write.

picojson::value boolToJson(const QVariant& value)
{
    return picojson::value(value.toBool());
}

picojson::value intToJson(const QVariant& value)
{
    return picojson::value(double(value.toInt()));
}

picojson::value unsignedToJson(const QVariant& value)
{
    return picojson::value(double(value.toUInt()));
}

picojson::value floatToJson(const QVariant& value)
{
    return picojson::value(double(value.toFloat()));
}

picojson::value textToJson(const QVariant& value)
{
    return picojson::value(text::toLatin1(value.toString()));
}

// A cached variant to the host's bytes.

QByteArray boolToHost(const QVariant& value, int)
{
    return host_bytes::fromNumber(value.toBool() ? 1 : 0, 1);
}

QByteArray int16ToHost(const QVariant& value, int)
{
    return host_bytes::fromNumber(quint32(value.toInt()), 2);
}

QByteArray unsigned16ToHost(const QVariant& value, int)
{
    return host_bytes::fromNumber(value.toUInt(), 2);
}

/// Reads the text as hexadecimal digits: what a HEX item means, and how a BCD item becomes BCD.
QByteArray hex16ToHost(const QVariant& value, int)
{
    return host_bytes::fromNumber(value.toString().toUShort(0, 16), 2);
}

QByteArray hex32ToHost(const QVariant& value, int)
{
    return host_bytes::fromNumber(value.toString().toUInt(0, 16), 4);
}

QByteArray int32ToHost(const QVariant& value, int)
{
    return host_bytes::fromNumber(quint32(value.toInt()), 4);
}

QByteArray unsigned32ToHost(const QVariant& value, int)
{
    return host_bytes::fromNumber(value.toUInt(), 4);
}

QByteArray floatToHost(const QVariant& value, int)
{
    return host_bytes::fromFloat(value.toFloat());
}

QByteArray textToHost(const QVariant& value, int data_length)
{
    const QByteArray bytes = text::toHostBytes(value.toString());
    // Qt takes a length far below zero for a very large one.
    return data_length > bytes.size() ? bytes.leftJustified(data_length, '\0') : bytes;
}

// The host's bytes to the variant that is cached and written.

QVariant boolFromHost(const QByteArray& bytes)
{
    return QVariant(host_bytes::toNumber(bytes, 1) != 0);
}

QVariant int16FromHost(const QByteArray& bytes)
{
    return QVariant(int(host_bytes::signed16(host_bytes::toNumber(bytes, 2))));
}

QVariant unsigned16FromHost(const QByteArray& bytes)
{
    return QVariant(int(host_bytes::toNumber(bytes, 2)));
}

QVariant int32FromHost(const QByteArray& bytes)
{
    return QVariant(host_bytes::signed32(host_bytes::toNumber(bytes, 4)));
}

QVariant unsigned32FromHost(const QByteArray& bytes)
{
    return QVariant(host_bytes::toNumber(bytes, 4));
}

/// The hexadecimal digits read as decimal ones: a digit above 9 gives 0.
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

QVariant bcd16FromHost(const QByteArray& bytes)
{
    return QVariant(int(decimalOfBcd(host_bytes::toNumber(bytes, 2))));
}

QVariant bcd32FromHost(const QByteArray& bytes)
{
    return QVariant(decimalOfBcd(host_bytes::toNumber(bytes, 4)));
}

QVariant hex16FromHost(const QByteArray& bytes)
{
    return QVariant(QByteArray::number(host_bytes::toNumber(bytes, 2), 16));
}

QVariant hex32FromHost(const QByteArray& bytes)
{
    return QVariant(QByteArray::number(host_bytes::toNumber(bytes, 4), 16));
}

QVariant floatFromHost(const QByteArray& bytes)
{
    return QVariant(host_bytes::toFloat(bytes));
}

QVariant textFromHost(const QByteArray& bytes)
{
    return QVariant(text::fromHostBytes(bytes));
}

const DataItemType types[] = {
    {"Bit", 0, &picojson::value::is<bool>, boolFromJson, boolToJson, boolToHost, boolFromHost},
    {"16Bit-BCD", 0, &picojson::value::is<double>, unsignedShortFromJson, unsignedToJson,
     hex16ToHost, bcd16FromHost},
    {"16Bit-INT", 0, &picojson::value::is<double>, shortFromJson, intToJson, int16ToHost,
     int16FromHost},
    {"16Bit-UINT", 0, &picojson::value::is<double>, unsignedShortFromJson, unsignedToJson,
     unsigned16ToHost, unsigned16FromHost},
    {"16Bit-HEX", 0, &picojson::value::is<std::string>, textFromJson, textToJson, hex16ToHost,
     hex16FromHost},
    {"32Bit-BCD", 0, &picojson::value::is<double>, unsignedFromJson, unsignedToJson, hex32ToHost,
     bcd32FromHost},
    {"32Bit-INT", 0, &picojson::value::is<double>, intFromJson, intToJson, int32ToHost,
     int32FromHost},
    {"32Bit-UINT", 0, &picojson::value::is<double>, unsignedFromJson, unsignedToJson,
     unsigned32ToHost, unsigned32FromHost},
    {"32Bit-HEX", 0, &picojson::value::is<std::string>, textFromJson, textToJson, hex32ToHost,
     hex32FromHost},
    {"32Bit-FLOAT", 0, &picojson::value::is<double>, floatFromJson, floatToJson, floatToHost,
     floatFromHost},
    {"String", "Ascii String", &picojson::value::is<std::string>, textFromJson, textToJson,
     textToHost, textFromHost},
};

const int type_count = int(sizeof types / sizeof types[0]);

QVector<QString> allNames()
{
    QVector<QString> names;
    for (int i = 0; i < type_count; ++i)
        names.append(QLatin1String(types[i].name));
    return names;
}

} // namespace

const DataItemType* findDataItemType(const QString& name)
{
    for (int i = 0; i < type_count; ++i) {
        if (name == QLatin1String(types[i].name))
            return &types[i];
    }
    return 0;
}

const DataItemType* findServiceType(const QString& service_name)
{
    for (int i = 0; i < type_count; ++i) {
        const char* alias = types[i].service_alias;
        if (alias && service_name == QLatin1String(alias))
            return &types[i];
    }
    return findDataItemType(service_name);
}

QString sharedName(const DataItemType& type)
{
    // Never destroyed: the client of a driver that was not closed may still run when the process
    // ends.
    static const QVector<QString>& names = *new QVector<QString>(allNames());
    return names.at(int(&type - types));
}
