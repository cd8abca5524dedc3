#include "cloud/data_item_type.h"
#include "tests/twin/transcript.h"
#include "tests/twin/twin.h"

#include <stdexcept>

namespace {

const char* const type_names[] = {"Bit",       "16Bit-BCD", "16Bit-INT",  "16Bit-UINT",
                                  "16Bit-HEX", "32Bit-BCD", "32Bit-INT",  "32Bit-UINT",
                                  "32Bit-HEX", "String",    "32Bit-FLOAT"};

const double numbers[] = {0,
                          1,
                          -1,
                          2,
                          7,
                          9,
                          10,
                          15,
                          16,
                          42,
                          99,
                          100,
                          127,
                          128,
                          255,
                          256,
                          999,
                          1000,
                          1234,
                          9999,
                          10000,
                          12345,
                          32767,
                          32768,
                          32769,
                          -32768,
                          -32769,
                          65535,
                          65536,
                          65537,
                          99999999,
                          100000000,
                          123456789,
                          2147483646,
                          2147483647,
                          2147483648.0,
                          -2147483648.0,
                          -2147483649.0,
                          4294967294.0,
                          4294967295.0,
                          4294967296.0,
                          1e10,
                          -1e10,
                          1e15,
                          9007199254740992.0,
                          1e17,
                          1e38,
                          3.5e38,
                          -3.5e38,
                          1e300,
                          0.1,
                          0.5,
                          -0.5,
                          1.5,
                          2.5,
                          12.5,
                          -12.5,
                          0.000001,
                          1e-7,
                          1e-40,
                          1e-310,
                          3.14159265,
                          21.7,
                          99.99,
                          1234.5678,
                          16777217};

const char* const texts[] = {
    "",           "0",           "1",          "9",        "A",     "a",         "F",
    "f",          "10",          "1F",         "ff",       "0001",  "00FF",      "7FFF",
    "8000",       "FFFF",        "10000",      "0x12",     "0X1a",  "-1",        "+1",
    " 12",        "12 ",         "G",          "12G",      "12345", "DEADBEEF",  "deadbeef",
    "FFFFFFFF",   "100000000",   "7FFFFFFF",   "80000000", "text",  "two words", "a\tb",
    "\"quoted\"", "back\\slash", "4294967295", "1.5",      "true"};

/// All four forms that follow from a cached value.
QByteArray formsOf(const DataItemType& type, const QVariant& value)
{
    QByteArray json;
    try {
        json = QByteArray(type.to_json(value).serialize().c_str());
    } catch (const std::exception& error) {
        json = QByteArray("raises ") + error.what();
    }
    return textOf(value) + " | json " + json + " | host " + hex(type.to_host(value, 0)) + " | 6 " +
           hex(type.to_host(value, 6));
}

void fromJson(const DataItemType& type, const picojson::value& json)
{
    const QByteArray text = QByteArray(json.serialize().c_str());
    if ((json.*type.is_expected)())
        say("json " + text + " -> " + formsOf(type, type.from_json(json)));
    else
        say("json " + text + " is none of the type");
}

void fromHost(const DataItemType& type, const QByteArray& bytes)
{
    say("host " + hex(bytes) + " -> " + formsOf(type, type.from_host(bytes)));
}

void fromVariant(const DataItemType& type, const QVariant& value)
{
    say("variant " + formsOf(type, value));
}

void everyHostBytes(const DataItemType& type)
{
    fromHost(type, QByteArray());
    for (int byte = 0; byte < 256; ++byte)
        fromHost(type, QByteArray(1, char(byte)));
    const unsigned patterns[] = {0x0000, 0x0001, 0x0099, 0x00A0, 0x0100, 0x1234,
                                 0x7FFF, 0x8000, 0x9999, 0x9A99, 0xABCD, 0xFFFF};
    for (unsigned low : patterns) {
        for (unsigned high : patterns) {
            QByteArray bytes;
            for (unsigned half : {low, high})
                bytes.append(char(half & 0xFF)).append(char(half >> 8));
            fromHost(type, bytes.left(2));
            fromHost(type, bytes.left(3));
            fromHost(type, bytes);
            fromHost(type, bytes + "more");
        }
    }
}

} // namespace

void twinConversions()
{
    for (const char* name : type_names) {
        section(name);
        const DataItemType& type = *findDataItemType(QLatin1String(name));
        fromJson(type, picojson::value());
        fromJson(type, picojson::value(true));
        fromJson(type, picojson::value(false));
        for (double number : numbers) {
            fromJson(type, picojson::value(number));
            fromVariant(type, QVariant(number));
            fromVariant(type, QVariant(float(number)));
        }
        for (const char* text : texts) {
            fromJson(type, picojson::value(text));
            fromVariant(type, QVariant(QLatin1String(text)));
            fromVariant(type, QVariant(QByteArray(text)));
        }
        fromJson(type, picojson::value("\xC3\xBC \xFF"));
        fromVariant(type, QVariant());
        fromVariant(type, QVariant(true));
        fromVariant(type, QVariant::fromValue<short>(-5));
        fromVariant(type, QVariant::fromValue<unsigned short>(65535));
        fromVariant(type, QVariant(-1));
        fromVariant(type, QVariant(4294967295U));
        everyHostBytes(type);
    }
}
