#include "fuzz/input.h"
#include "fuzz/item_values.h"
#include "fuzz/target.h"

#include "cloud/host_bytes.h"
#include "compat/twos_complement.h"

#include <QList>

#include <cmath>
#include <cstring>

namespace fuzz {

namespace {

/// Whether all digits of the first \a size bytes are decimal ones.
bool isBcd(const QByteArray& bytes, int size)
{
    for (const char byte : bytes.left(size)) {
        const int number = static_cast<unsigned char>(byte);
        if (number % 16 > 9 || number / 16 > 9)
            return false;
    }
    return true;
}

/// What must come back when \a bytes have been taken as a value of the type and are read again.
QByteArray expectedBack(const QByteArray& name, const QByteArray& bytes)
{
    if (name == "String")
        return bytes.split('\0').first();
    if (name == "Bit")
        return QByteArray(1, bytes.isEmpty() || bytes.at(0) == 0 ? '\0' : '\1');
    const int size = name.startsWith("16") ? 2 : 4;
    if (name == "32Bit-FLOAT")
        return bytes.leftJustified(size, '\0', true);
    if (bytes.size() < size || (name.endsWith("BCD") && !isBcd(bytes, size)))
        return QByteArray(size, '\0');
    return bytes.left(size);
}

bool isNaN(const QByteArray& bytes)
{
    return std::isnan(host_bytes::toFloat(bytes));
}

void checkNumber(quint32 number)
{
    for (const int size : {1, 2, 4}) {
        const quint32 low = size == 4 ? number : number & ((1U << (8 * size)) - 1);
        require(host_bytes::toNumber(host_bytes::fromNumber(number, size), size) == low,
                "a number comes back from its bytes");
    }
    float single = 0;
    std::memcpy(&single, &number, sizeof single);
    if (!std::isnan(single))
        require(host_bytes::toFloat(host_bytes::fromFloat(single)) == single,
                "a float comes back from its bytes");
    require(quint32(twos_complement::signed32(number)) == number &&
                quint16(twos_complement::signed16(number)) == quint16(number),
            "signed numbers have the same bits");
}

} // namespace

// A byte for the type, two for the length that the host wishes, then its bytes.
void runHostBytes(const QByteArray& input)
{
    Input next(input);
    const int index = next.choice(type_count + 1);
    const int data_length = qint16(next.number16());
    const QByteArray bytes = next.rest();
    if (index == type_count) {
        const DataItemType* type =
            findDataItemType(QString::fromLatin1(bytes.constData(), bytes.size()));
        require(!type || bytes == type->name, "no other name is taken for a type's");
        checkNumber(host_bytes::toNumber(bytes, 4));
        return;
    }
    const DataItemType& type = typeAt(index);
    const QVariant written = type.from_host(bytes);
    checkValue(type, written, data_length);
    const QByteArray back = type.to_host(written, 0);
    const QByteArray expected = expectedBack(type_names[index], bytes);
    // A processor may quieten a not-a-number on its way.
    const bool is_nan = index == 9 && isNaN(expected);
    require(is_nan ? isNaN(back) : back == expected, "the host reads what it has written");
}

} // namespace fuzz
