#ifndef TOOLS_HOST_VALUE_HEX_BYTES_H
#define TOOLS_HOST_VALUE_HEX_BYTES_H

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tovik_host::value {

/// Bytes that a user has written, or what is wrong with them.
struct HexBytes
{
    QByteArray bytes;
    QString problem;
};

/// Reads bytes as pairs of hexadecimal digits: "01 03 0a", "01030A", in any number of texts.
HexBytes parseHexBytes(const QStringList& texts);

} // namespace tovik_host::value

#endif
