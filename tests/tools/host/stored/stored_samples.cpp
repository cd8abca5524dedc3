#include "tests/tools/host/stored/stored_samples.h"

#include <QDataStream>
#include <QTest>

#include <cmath>
#include <cstring>
#include <limits>

using namespace tovik_host;

namespace {

void prepare(QDataStream* stream, const StoredFormat& format)
{
    qRegisterMetaTypeStreamOperators<PropertyTovikIot>();
    stream->setVersion(format.version);
    stream->setByteOrder(format.big_endian ? QDataStream::BigEndian : QDataStream::LittleEndian);
    stream->setFloatingPointPrecision(format.single_precision ? QDataStream::SinglePrecision
                                                              : QDataStream::DoublePrecision);
}

QVariant variantOf(const StoredValue& value)
{
    const QString type = QString::fromLatin1(value.type->name);
    if (type == QLatin1String("bool"))
        return value.bits != 0;
    if (type == QLatin1String("short"))
        return QVariant::fromValue(short(value.bits));
    if (type == QLatin1String("ushort"))
        return QVariant::fromValue(ushort(value.bits));
    if (type == QLatin1String("int"))
        return int(value.bits);
    if (type == QLatin1String("uint"))
        return uint(value.bits);
    if (type == QLatin1String("float"))
        return QVariant::fromValue(float(doubleOf(value.bits)));
    if (type == QLatin1String("QString"))
        return value.text;
    if (type == QLatin1String("QByteArray"))
        return value.bytes;
    return QVariant();
}

PropertyTovikIotDataItem propertyOf(const StoredItem& item)
{
    PropertyTovikIotDataItem property;
    property.name = item.name;
    property.dataitem_id = item.dataitem_id;
    property.type = item.type;
    property.length = item.length;
    property.value = variantOf(item.value);
    property.cloud_status = item.cloud_status;
    property.alert = item.alert;
    property.update_time = item.update_time;
    property.marked = item.marked;
    return property;
}

PropertyTovikIotGroup propertyOf(const StoredGroup& group)
{
    PropertyTovikIotGroup property;
    property.group_id = group.group_id;
    property.name = group.name;
    property.location = group.location;
    property.ddLocation = group.ddLocation;
    property.alert = group.alert;
    property.permission = group.permission;
    property.marked = group.marked;
    for (const StoredItem& item : group.dataitems)
        property.dataitems << propertyOf(item);
    return property;
}

float signallingNan()
{
    const quint32 bits = 0x7FA00001;
    float number = 0;
    std::memcpy(&number, &bits, sizeof(number));
    return number;
}

void addRowsOf(int version)
{
    for (const StoredForm form : {StoredForm::record, StoredForm::variant}) {
        for (const bool big_endian : {true, false}) {
            for (const bool single_precision : {false, true}) {
                const StoredFormat format = {form, version, big_endian, single_precision};
                if (single_precision && !format.hasPrecision())
                    continue;
                QTest::addRow("version %d, %s, %s endian, %s precision", version,
                              qPrintable(formName(form)), qPrintable(orderName(big_endian)),
                              qPrintable(precisionName(single_precision)))
                    << format;
            }
        }
    }
}

} // namespace

QByteArray writtenByQt(const PropertyTovikIot& record, const StoredFormat& format)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(&stream, format);
    if (format.form == StoredForm::variant)
        stream << QVariant::fromValue(record);
    else
        stream << record;
    return bytes;
}

PropertyTovikIot readByQt(const QByteArray& bytes, const StoredFormat& format)
{
    QDataStream stream(bytes);
    prepare(&stream, format);
    PropertyTovikIot record;
    QVariant variant;
    if (format.form == StoredForm::variant) {
        stream >> variant;
        record = variant.value<PropertyTovikIot>();
    } else {
        stream >> record;
    }
    return record;
}

PropertyTovikIot propertyOf(const StoredRecord& record)
{
    PropertyTovikIot property;
    property.aux_flag = record.aux_flag;
    property.host = record.host;
    property.aux_value = record.aux_value;
    property.project = record.project;
    property.email = record.email;
    property.password = record.password;
    for (const StoredGroup& group : record.groups)
        property.groups << propertyOf(group);
    for (const StoredItem& item : record.dataitems)
        property.dataitems << propertyOf(item);
    return property;
}

PropertyTovikIot recordWith(const QList<QVariant>& values)
{
    PropertyTovikIot record;
    record.password = QStringLiteral("secret");
    for (const QVariant& value : values) {
        PropertyTovikIotDataItem item;
        item.name = QStringLiteral("item %1").arg(record.dataitems.size());
        item.value = value;
        record.dataitems << item;
    }
    return record;
}

QList<QVariant> driverValues()
{
    QList<QVariant> values = {QVariant(),
                              true,
                              false,
                              QVariant::fromValue<short>(-32768),
                              QVariant::fromValue<ushort>(65535),
                              std::numeric_limits<int>::min(),
                              0xFFFFFFFFu,
                              QVariant::fromValue(-12.625f),
                              QVariant::fromValue(0.1f),
                              QVariant::fromValue(-0.0f),
                              QVariant::fromValue(std::numeric_limits<float>::infinity()),
                              QVariant::fromValue(-std::numeric_limits<float>::infinity()),
                              QVariant::fromValue(std::numeric_limits<float>::denorm_min()),
                              QVariant::fromValue(std::numeric_limits<float>::max()),
                              QByteArray(),
                              QByteArray(""),
                              QByteArray("\xff\0a", 3)};
    for (const QString& text : hardTexts())
        values << text;
    return values;
}

QList<QVariant> allValues()
{
    const QVariantMap map = {{QStringLiteral("a"), 1}, {QStringLiteral("b"), QVariant()}};
    const QVariantList list = {1, QVariantList{true, QVariantList()}, map};
    return driverValues() + QList<QVariant>{QVariant::fromValue(std::nanf("")),
                                            QVariant::fromValue(-std::nanf("")),
                                            QVariant::fromValue(signallingNan()),
                                            std::numeric_limits<qint64>::min(),
                                            std::numeric_limits<quint64>::max(),
                                            0.5,
                                            std::nan(""),
                                            -std::numeric_limits<double>::infinity(),
                                            QChar(0xD800),
                                            QVariant::fromValue<char>(-1),
                                            QVariant::fromValue<signed char>(-128),
                                            QVariant::fromValue<uchar>(255),
                                            QVariant::fromValue<long>(-5),
                                            QVariant::fromValue<ulong>(5),
                                            QVariant(hardTexts()),
                                            QVariant(QStringList()),
                                            map,
                                            list,
                                            QVariantHash{{QStringLiteral("k"), 0.25}}};
}

QStringList hardTexts()
{
    const QChar half(0xD83D);
    return {QString(),
            QLatin1String(""),
            QString::fromLatin1("a\0b", 3),
            QString::fromLatin1("\x01\x1f\x7f\t\r\n\"\\/"),
            QString(half),
            QString(QChar(0xDC00)) + half + QLatin1Char('x'),
            QString::fromUtf8("Gr\xc3\xbc\xc3\x9f"
                              "e \xf0\x9f\x98\x80"),
            QString(QChar(0xFEFF)) + QChar(0xFEFF) + QLatin1Char('y'),
            QString(QChar(0xFFFE)) + QChar(0xFFFF)};
}

void addStoredFormatRows()
{
    QTest::addColumn<StoredFormat>("format");
    for (int version = oldest_version; version <= newestVersion(); ++version)
        addRowsOf(version);
}

void addStoredLayoutRows()
{
    QTest::addColumn<StoredFormat>("format");
    for (const int version : {7, 9, 12, 19})
        addRowsOf(version);
}

JsonFile jsonFile(const QByteArray& text)
{
    return {QStringLiteral("file"), nlohmann::json::parse(text.toStdString()),
            findJsonLines(text.toStdString())};
}

QByteArray jsonTextOf(const StoredRecord& record)
{
    OrderedJson json = OrderedJson::object();
    json["tovik_iot"] = recordToJson(record, HiddenTexts::none);
    return storedJsonText(json);
}
