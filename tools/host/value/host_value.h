#ifndef TOOLS_HOST_VALUE_HOST_VALUE_H
#define TOOLS_HOST_VALUE_HOST_VALUE_H

#include "tools/host/terminal/text.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// \file
/// Values as a user writes them and as the host's bytes carry them. The types of data items are the
/// rows of one table.
namespace tovik_host::value {

struct ItemType
{
    /// The type's name in configurations, matched whole and case-sensitively.
    const char* name;
    /// Bytes of a value; 0 for texts, which are as long as they are.
    int size;
    /// Smallest and largest whole number of the type; both 0 where that says nothing.
    qint64 low;
    qint64 high;
    /// Whether JSON shows the value as a number.
    bool is_number;
    /// Bytes as text; nothing when the bytes are none of this type.
    std::optional<QString> (*decode)(const ItemType& type, const QByteArray& bytes);
    /// A user's text as bytes; throws UsageError. \a length is the room of a text in characters, 0
    /// for any.
    QByteArray (*encode)(const ItemType& type, const QString& text, int length);
};

const ItemType* findItemType(const QString& name);
/// All names, separated by commas, for messages.
QString allItemTypeNames();

/// \a bytes as text, or nothing when they are no value of the type: too few, or no BCD digits.
std::optional<QString> decodeValue(const ItemType& type, const QByteArray& bytes);
/// \a text as bytes, checked against the limits of the type. Throws UsageError.
QByteArray encodeValue(const ItemType& type, const QString& text, int length);
/// Whether the service, which shows \a shown, has the value \a wanted, as far as its answers can
/// tell: it is sent floating numbers with six decimals, and it answers texts as UTF-8, which reach
/// the host byte by byte.
bool sameValue(const ItemType& type, const QByteArray& shown, const QByteArray& wanted);

/// Bytes as pairs of hexadecimal digits, separated by spaces.
QString hexText(const QByteArray& bytes);

/// Reads bytes as pairs of hexadecimal digits: "01 03 0a", "01030A", in any number of texts. Throws
/// UsageError, also for none.
QByteArray parseHexBytes(const QStringList& texts);

} // namespace tovik_host::value

#endif
