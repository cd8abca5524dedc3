#ifndef TOOLS_HOST_VALUE_VALUE_CODEC_H
#define TOOLS_HOST_VALUE_VALUE_CODEC_H

#include "tools/host/value/host_value.h"

/// \file
/// The conversions that the rows of the type table are made of.
namespace tovik_host::value::codec {

std::optional<QString> decodeBit(const ItemType& type, const QByteArray& bytes);
std::optional<QString> decodeInteger(const ItemType& type, const QByteArray& bytes);
std::optional<QString> decodeHex(const ItemType& type, const QByteArray& bytes);
std::optional<QString> decodeBcd(const ItemType& type, const QByteArray& bytes);
std::optional<QString> decodeFloat(const ItemType& type, const QByteArray& bytes);
std::optional<QString> decodeText(const ItemType& type, const QByteArray& bytes);

EncodedValue encodeBit(const ItemType& type, const QString& text, int length);
EncodedValue encodeInteger(const ItemType& type, const QString& text, int length);
EncodedValue encodeHex(const ItemType& type, const QString& text, int length);
EncodedValue encodeBcd(const ItemType& type, const QString& text, int length);
EncodedValue encodeFloat(const ItemType& type, const QString& text, int length);
EncodedValue encodeText(const ItemType& type, const QString& text, int length);

/// The IEEE-754 single in the first four bytes.
float floatFromBytes(const QByteArray& bytes);

} // namespace tovik_host::value::codec

#endif
