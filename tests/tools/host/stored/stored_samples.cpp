#include "tests/tools/host/stored/stored_samples.h"

#include <QDataStream>
#include <QTest>

#include <cmath>
#include <limits>

using namespace tovik_host::stored;

namespace {

void prepare(QDataStream* stream, const Format& format)
{
    qRegisterMetaTypeStreamOperators<PropertyTovikIot>();
    stream->setVersion(format.version);
    stream->setByteOrder(format.big_endian ? QDataStream::BigEndian : QDataStream::LittleEndian);
    stream->setFloatingPointPrecision(format.single_precision ? QDataStream::SinglePrecision
                                                              : QDataStream::DoublePrecision);
}

void addRowsOf(int version)
{
    for (const bool is_variant : {false, true}) {
        for (const bool big_endian : {true, false}) {
            for (const bool single_precision : {false, true}) {
                const Format format = {is_variant, version, big_endian, single_precision};
                if (single_precision && version < QDataStream::Qt_4_6)
                    continue;
                QTest::addRow("version %d, %s, %s endian, %s precision", version,
                              qPrintable(choices[0].word(is_variant)),
                              qPrintable(choices[1].word(big_endian)),
                              qPrintable(choices[2].word(single_precision)))
                    << format;
            }
        }
    }
}

} // namespace

QByteArray writtenByQt(const PropertyTovikIot& record, const Format& format)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(&stream, format);
    if (format.is_variant)
        stream << QVariant::fromValue(record);
    else
        stream << record;
    return bytes;
}

PropertyTovikIot readByQt(const QByteArray& bytes, const Format& format)
{
    QDataStream stream(bytes);
    prepare(&stream, format);
    PropertyTovikIot record;
    QVariant variant;
    if (format.is_variant) {
        stream >> variant;
        record = variant.value<PropertyTovikIot>();
    } else {
        stream >> record;
    }
    return record;
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
    QTest::addColumn<Format>("format");
    for (int version = Versions().first; version <= Versions().last; ++version)
        addRowsOf(version);
}

void addStoredLayoutRows()
{
    QTest::addColumn<Format>("format");
    for (const int version : {7, 9, 12, 19})
        addRowsOf(version);
}

tovik_host::config::JsonFile jsonFile(const QByteArray& text)
{
    return tovik_host::config::parseJson(QStringLiteral("file"), text);
}

QByteArray jsonTextOf(const PropertyTovikIot& record, int known)
{
    tovik_host::value::OrderedJson json = tovik_host::value::OrderedJson::object();
    json["tovik_iot"] = recordToJson(record, known);
    return tovik_host::value::jsonText(json).toUtf8();
}
