#include "tests/property/stream_format.h"

#include <QTest>

const int stream_versions[3] = {QDataStream::Qt_4_5, QDataStream::Qt_4_8, QDataStream::Qt_5_15};

namespace {

static_assert(int(QDataStream::Qt_4_6) == int(QDataStream::Qt_4_8), "a row of its own is missing");

const char* const version_names[] = {"Qt_4_5", "Qt_4_6 to Qt_4_8", "Qt_5_15"};

void addRows(QDataStream::FloatingPointPrecision precision)
{
    const bool is_double = precision == QDataStream::DoublePrecision;
    for (int i = 0; i < 3; ++i) {
        for (const auto order : {QDataStream::BigEndian, QDataStream::LittleEndian}) {
            const bool is_big = order == QDataStream::BigEndian;
            QTest::addRow("%s, %s endian, %s precision", version_names[i],
                          is_big ? "big" : "little", is_double ? "double" : "single")
                << StreamFormat{stream_versions[i], order, precision};
        }
    }
}

} // namespace

void addFormatRows()
{
    QTest::addColumn<StreamFormat>("format");
    addRows(QDataStream::DoublePrecision);
    addRows(QDataStream::SinglePrecision);
}

void addDoublePrecisionRows()
{
    QTest::addColumn<StreamFormat>("format");
    addRows(QDataStream::DoublePrecision);
}
