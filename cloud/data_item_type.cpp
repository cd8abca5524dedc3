#include "cloud/data_item_type.h"

#include "cloud/host_bytes.h"
#include "cloud/json_number.h"
#include "compat/text.h"
#include "compat/twos_complement.h"

#include <QVector>

namespace {

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

/// The service's JSON to the cached variant.
struct FromJson
{
    static QVariant flag(const picojson::value& json) { return QVariant(json.get<bool>()); }
    static QVariant int16(const picojson::value& json)
    {
        const quint32 bits = quint32(json_number::toInt32(json.get<double>()));
        return QVariant::fromValue<short>(twos_complement::signed16(bits));
    }
    static QVariant uint16(const picojson::value& json)
    {
        const quint32 bits = json_number::toUInt32(json.get<double>());
        return QVariant::fromValue<unsigned short>(static_cast<quint16>(bits & 0xFFFF));
    }
    static QVariant int32(const picojson::value& json)
    {
        return QVariant(json_number::toInt32(json.get<double>()));
    }
    static QVariant uint32(const picojson::value& json)
    {
        return QVariant(json_number::toUInt32(json.get<double>()));
    }
    static QVariant real(const picojson::value& json)
    {
        return QVariant(json_number::toFloat(json.get<double>()));
    }
    static QVariant characters(const picojson::value& json)
    {
        return QVariant(text::fromLatin1(json.get<std::string>()));
    }
};

/// A variant to the JSON of a write.
struct ToJson
{
    static picojson::value flag(const QVariant& value) { return picojson::value(value.toBool()); }
    static picojson::value signedNumber(const QVariant& value)
    {
        return picojson::value(double(value.toInt()));
    }
    static picojson::value unsignedNumber(const QVariant& value)
    {
        return picojson::value(double(value.toUInt()));
    }
    static picojson::value real(const QVariant& value)
    {
        return picojson::value(double(value.toFloat()));
    }
    static picojson::value characters(const QVariant& value)
    {
        return picojson::value(text::toLatin1(value.toString()));
    }
};

/// A cached variant to the host's bytes. The digits of a HEX item are hexadecimal ones; read so,
/// those of a BCD item become BCD.
struct ToHost
{
    static QByteArray flag(const QVariant& value, int)
    {
        return host_bytes::fromNumber(value.toBool() ? 1 : 0, 1);
    }
    template <int size>
    static QByteArray signedNumber(const QVariant& value, int)
    {
        return host_bytes::fromNumber(quint32(value.toInt()), size);
    }
    template <int size>
    static QByteArray unsignedNumber(const QVariant& value, int)
    {
        return host_bytes::fromNumber(value.toUInt(), size);
    }
    static QByteArray digits16(const QVariant& value, int)
    {
        return host_bytes::fromNumber(value.toString().toUShort(0, 16), 2);
    }
    static QByteArray digits32(const QVariant& value, int)
    {
        return host_bytes::fromNumber(value.toString().toUInt(0, 16), 4);
    }
    static QByteArray real(const QVariant& value, int)
    {
        return host_bytes::fromFloat(value.toFloat());
    }
    static QByteArray characters(const QVariant& value, int data_length)
    {
        const QByteArray bytes = text::toHostBytes(value.toString());
        // Qt takes a length far below zero for a very large one.
        return data_length > bytes.size() ? bytes.leftJustified(data_length, '\0') : bytes;
    }
};

/// The host's bytes to the variant that is cached and written.
struct FromHost
{
    static QVariant flag(const QByteArray& ba)
    {
        return QVariant(host_bytes::toNumber(ba, 1) != 0);
    }
    static QVariant int16(const QByteArray& ba)
    {
        return QVariant(int(twos_complement::signed16(host_bytes::toNumber(ba, 2))));
    }
    static QVariant uint16(const QByteArray& ba)
    {
        return QVariant(int(host_bytes::toNumber(ba, 2)));
    }
    static QVariant int32(const QByteArray& ba)
    {
        return QVariant(twos_complement::signed32(host_bytes::toNumber(ba, 4)));
    }
    static QVariant uint32(const QByteArray& ba) { return QVariant(host_bytes::toNumber(ba, 4)); }
    static QVariant bcd16(const QByteArray& ba)
    {
        return QVariant(int(decimalOfBcd(host_bytes::toNumber(ba, 2))));
    }
    static QVariant bcd32(const QByteArray& ba)
    {
        return QVariant(decimalOfBcd(host_bytes::toNumber(ba, 4)));
    }
    template <int size>
    static QVariant hex(const QByteArray& ba)
    {
        return QVariant(QByteArray::number(host_bytes::toNumber(ba, size), 16));
    }
    static QVariant real(const QByteArray& ba) { return QVariant(host_bytes::toFloat(ba)); }
    static QVariant characters(const QByteArray& ba) { return QVariant(text::fromHostBytes(ba)); }
};

const DataItemType types[] = {
    {"Bit", 0, &picojson::value::is<bool>, FromJson::flag, ToJson::flag, ToHost::flag,
     FromHost::flag},
    {"16Bit-BCD", 0, &picojson::value::is<double>, FromJson::uint16, ToJson::unsignedNumber,
     ToHost::digits16, FromHost::bcd16},
    {"16Bit-INT", 0, &picojson::value::is<double>, FromJson::int16, ToJson::signedNumber,
     ToHost::signedNumber<2>, FromHost::int16},
    {"16Bit-UINT", 0, &picojson::value::is<double>, FromJson::uint16, ToJson::unsignedNumber,
     ToHost::unsignedNumber<2>, FromHost::uint16},
    {"16Bit-HEX", 0, &picojson::value::is<std::string>, FromJson::characters, ToJson::characters,
     ToHost::digits16, FromHost::hex<2>},
    {"32Bit-BCD", 0, &picojson::value::is<double>, FromJson::uint32, ToJson::unsignedNumber,
     ToHost::digits32, FromHost::bcd32},
    {"32Bit-INT", 0, &picojson::value::is<double>, FromJson::int32, ToJson::signedNumber,
     ToHost::signedNumber<4>, FromHost::int32},
    {"32Bit-UINT", 0, &picojson::value::is<double>, FromJson::uint32, ToJson::unsignedNumber,
     ToHost::unsignedNumber<4>, FromHost::uint32},
    {"32Bit-HEX", 0, &picojson::value::is<std::string>, FromJson::characters, ToJson::characters,
     ToHost::digits32, FromHost::hex<4>},
    {"32Bit-FLOAT", 0, &picojson::value::is<double>, FromJson::real, ToJson::real, ToHost::real,
     FromHost::real},
    {"String", "Ascii String", &picojson::value::is<std::string>, FromJson::characters,
     ToJson::characters, ToHost::characters, FromHost::characters},
};

QVector<QString> allNames()
{
    QVector<QString> names;
    for (const DataItemType& type : types)
        names.append(QLatin1String(type.name));
    return names;
}

} // namespace

const DataItemType* findDataItemType(const QString& name)
{
    for (const DataItemType& type : types) {
        if (name == QLatin1String(type.name))
            return &type;
    }
    return 0;
}

const DataItemType* findServiceType(const QString& service_name)
{
    for (const DataItemType& type : types) {
        if (type.service_alias && service_name == QLatin1String(type.service_alias))
            return &type;
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
