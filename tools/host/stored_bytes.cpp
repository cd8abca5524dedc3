#include "tools/host/stored_bytes.h"

#include <QtEndian>

namespace tovik_host {

namespace {

const quint64 null_mark = 0xFFFFFFFF;

/// An empty array that is not null.
QByteArray emptyBytes()
{
    return QByteArray("");
}

} // namespace

bool StoredBytes::number(int size, const char* what, quint64* value)
{
    if (left() < size) {
        return fail(QStringLiteral("%1 takes %2 bytes, and the file has %3 more")
                        .arg(QLatin1String(what))
                        .arg(size)
                        .arg(left()),
                    size - left());
    }
    *value = 0;
    for (int i = 0; i < size; ++i) {
        const int place = big_endian_ ? i : size - 1 - i;
        *value = *value << 8 | quint8(bytes_.at(position_ + place));
    }
    position_ += size;
    return true;
}

bool StoredBytes::counted(const char* what, quint64* size)
{
    const int start = position_;
    if (!number(4, what, size))
        return false;
    if (*size == null_mark || *size <= quint64(left()))
        return true;
    const int rest = left();
    position_ = start;
    return fail(QStringLiteral("%1 says %2 bytes, and the file has %3 more behind it")
                    .arg(QLatin1String(what))
                    .arg(*size)
                    .arg(rest),
                qint64(*size) - rest);
}

bool StoredBytes::text(QString* text)
{
    const int start = position_;
    quint64 size = 0;
    if (!counted("the length of the text", &size))
        return false;
    if (size == null_mark) {
        *text = QString();
        return true;
    }
    if (size % 2 != 0) {
        position_ = start;
        return fail(QStringLiteral("a text of %1 bytes; it has two for each character").arg(size));
    }
    const int length = int(size / 2);
    *text = QLatin1String("");
    text->resize(length);
    const char* source = bytes_.constData() + position_;
    if (big_endian_)
        qFromBigEndian<quint16>(source, length, text->data());
    else
        qFromLittleEndian<quint16>(source, length, text->data());
    position_ += int(size);
    return true;
}

bool StoredBytes::bytes(QByteArray* bytes)
{
    quint64 size = 0;
    if (!counted("the length of the bytes", &size))
        return false;
    if (size == null_mark) {
        *bytes = QByteArray();
        return true;
    }
    *bytes = size == 0 ? emptyBytes() : bytes_.mid(position_, int(size));
    position_ += int(size);
    return true;
}

bool StoredBytes::fail(const QString& problem, qint64 missing)
{
    problem_ = problem;
    missing_ = missing;
    return false;
}

void StoredBytesOut::number(int size, quint64 value)
{
    for (int i = 0; i < size; ++i) {
        const int place = big_endian_ ? size - 1 - i : i;
        bytes_.append(char(value >> (8 * place) & 0xFF));
    }
}

void StoredBytesOut::text(const QString& text)
{
    if (text.isNull()) {
        number(4, null_mark);
        return;
    }
    number(4, quint64(text.size()) * 2);
    for (const QChar character : text)
        number(2, character.unicode());
}

void StoredBytesOut::bytes(const QByteArray& bytes)
{
    if (bytes.isNull()) {
        number(4, null_mark);
        return;
    }
    number(4, quint64(bytes.size()));
    bytes_.append(bytes);
}

} // namespace tovik_host
