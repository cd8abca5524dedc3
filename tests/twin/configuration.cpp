#include "property/property_tovik_iot.h"
#include "tests/twin/transcript.h"
#include "tests/twin/twin.h"

#include <QDataStream>

namespace {

/// The last one that Qt 4 knows.
const int latest_version = 12;

PropertyTovikIotDataItem item(const char* type, const QVariant& value)
{
    PropertyTovikIotDataItem item;
    item.name = QString::fromUtf8("St\xC3\xB6rung ") + QLatin1String(type);
    item.dataitem_id = QLatin1String("id");
    item.type = QLatin1String(type);
    item.value = value;
    item.length = 7;
    item.update_time = -1;
    return item;
}

PropertyTovikIot example()
{
    PropertyTovikIot property;
    property.project = QLatin1String("plant");
    property.password = QLatin1String("");
    property.dataitems << item("Bit", QVariant(true))
                       << item("16Bit-INT", QVariant::fromValue<short>(-2))
                       << item("16Bit-UINT", QVariant::fromValue<unsigned short>(65535))
                       << item("32Bit-INT", QVariant(-70000))
                       << item("32Bit-UINT", QVariant(4000000000U))
                       << item("32Bit-FLOAT", QVariant(12.5F))
                       << item("16Bit-HEX", QVariant(QByteArray("1f")))
                       << item("String", QVariant(QString::fromUtf8("\xC3\xBC")))
                       << item("32Bit-BCD", QVariant());
    PropertyTovikIotGroup group;
    group.group_id = QLatin1String("g");
    group.name = QLatin1String("Group");
    group.dataitems << item("Bit", QVariant(false));
    property.groups << group << PropertyTovikIotGroup();
    return property;
}

QByteArray write(const PropertyTovikIot& property, int version, QDataStream::ByteOrder order)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(version);
    stream.setByteOrder(order);
    stream << property;
    return bytes;
}

/// Whatever stands in it: damaged bytes give texts that have no UTF-8.
QByteArray textOf(const QString& text)
{
    if (text.isNull())
        return "null";
    QByteArray shown("\"");
    for (int i = 0; i < text.size(); ++i) {
        const ushort unit = text.at(i).unicode();
        if (unit < 0x7F)
            shown += char(unit);
        else
            shown += "\\u" + QByteArray::number(unit, 16);
    }
    return shown + '"';
}

QByteArray textOf(const PropertyTovikIotDataItem& item)
{
    return textOf(item.name) + ' ' + textOf(item.dataitem_id) + ' ' + textOf(item.type) + ' ' +
           (item.value.type() == QVariant::String ? textOf(item.value.toString())
                                                  : textOf(item.value)) +
           ' ' + QByteArray::number(item.length) + ' ' + QByteArray::number(item.update_time);
}

/// Everything that a reader finds, in one line.
void sayRead(const QByteArray& bytes, int version, QDataStream::ByteOrder order)
{
    PropertyTovikIot property;
    QDataStream stream(bytes);
    stream.setVersion(version);
    stream.setByteOrder(order);
    stream >> property;
    QByteArray line = "read status " + QByteArray::number(int(stream.status())) + ' ' +
                      textOf(property.host) + ' ' + textOf(property.project) + ' ' +
                      textOf(property.password);
    for (int i = 0; i < property.groups.size(); ++i) {
        line += " group " + textOf(property.groups.at(i).name);
        for (int j = 0; j < property.groups.at(i).dataitems.size(); ++j)
            line += " item " + textOf(property.groups.at(i).dataitems.at(j));
    }
    for (int i = 0; i < property.dataitems.size(); ++i)
        line += " item " + textOf(property.dataitems.at(i));
    say(line);
}

} // namespace

void twinConfiguration()
{
    const PropertyTovikIot property = example();
    for (int version = 1; version <= latest_version; ++version) {
        const QDataStream::ByteOrder orders[] = {QDataStream::BigEndian, QDataStream::LittleEndian};
        for (QDataStream::ByteOrder order : orders) {
            section(("stream " + QByteArray::number(version) +
                     (order == QDataStream::BigEndian ? " big" : " little")));
            const QByteArray bytes = write(property, version, order);
            say("written " + hex(bytes));
            sayRead(bytes, version, order);
        }
    }
    section("cut");
    const QByteArray bytes = write(property, latest_version, QDataStream::BigEndian);
    for (int size = 0; size < bytes.size(); ++size)
        sayRead(bytes.left(size), latest_version, QDataStream::BigEndian);
    section("damaged");
    for (int at = 0; at < bytes.size(); ++at) {
        QByteArray damaged(bytes);
        damaged[at] = char(damaged.at(at) ^ 0x5A);
        sayRead(damaged, latest_version, QDataStream::BigEndian);
    }
    sayLog();
}
