#include "benchmarks/sample_values.h"

namespace bench {

const std::vector<SampleValue>& sampleValues()
{
    static const std::vector<SampleValue> values = {
        {"Bit", "true", QVariant(true), QByteArray("\x01", 1), 1},
        {"16Bit-BCD", "1234", QVariant::fromValue<unsigned short>(1234), QByteArray("\x34\x12", 2),
         2},
        {"16Bit-INT", "-1234", QVariant::fromValue<short>(-1234), QByteArray("\x2E\xFB", 2), 2},
        {"16Bit-UINT", "51234", QVariant::fromValue<unsigned short>(51234),
         QByteArray("\x22\xC8", 2), 2},
        {"16Bit-HEX", "\"8007\"", QVariant(QString(QLatin1String("8007"))),
         QByteArray("\x07\x80", 2), 2},
        {"32Bit-BCD", "12345678", QVariant(12345678U), QByteArray("\x78\x56\x34\x12", 4), 4},
        {"32Bit-INT", "-12345678", QVariant(-12345678), QByteArray("\xB2\x9E\x43\xFF", 4), 4},
        {"32Bit-UINT", "4012345678", QVariant(4012345678U), QByteArray("\x4E\x89\x27\xEF", 4), 4},
        {"32Bit-HEX", "\"8007BEEF\"", QVariant(QString(QLatin1String("8007BEEF"))),
         QByteArray("\xEF\xBE\x07\x80", 4), 4},
        {"32Bit-FLOAT", "61.25", QVariant::fromValue<float>(61.25F),
         QByteArray("\x00\x00\x75\x42", 4), 4},
        {"String", "\"BX-2041-0077\"", QVariant(QString(QLatin1String("BX-2041-0077"))),
         QByteArray("BX-2041-0077\0\0\0\0", 16), 16},
    };
    return values;
}

PropertyTovikIot sampleConfiguration(int count, const char* type)
{
    const std::vector<SampleValue>& values = sampleValues();
    PropertyTovikIot configuration;
    configuration.host = QLatin1String("none:");
    configuration.project = QLatin1String("plant");
    for (int i = 0, at = 0; configuration.dataitems.size() < count; ++at) {
        const SampleValue& value = values.at(std::size_t(at) % values.size());
        if (type && qstrcmp(type, value.type) != 0)
            continue;
        PropertyTovikIotDataItem item;
        item.name = QString(QLatin1String("Line3.Tank.Value%1")).arg(i, 6, 10, QLatin1Char('0'));
        item.dataitem_id = QString(QLatin1String("5f1a7c2e9b%1")).arg(i, 14, 16, QLatin1Char('0'));
        item.type = QString::fromLatin1(value.type);
        item.value = value.cached;
        configuration.dataitems.append(item);
        ++i;
    }
    return configuration;
}

} // namespace bench
