#include "compat/text.h"

#include <cstring>

namespace text {

namespace {

int lengthUpToNul(const QByteArray& bytes)
{
    const void* nul = std::memchr(bytes.constData(), 0, std::size_t(bytes.size()));
    return nul ? int(static_cast<const char*>(nul) - bytes.constData()) : bytes.size();
}

} // namespace

QString fromLatin1(const std::string& bytes)
{
    return QString::fromLatin1(bytes.data(), int(bytes.size()));
}

QString fromUtf8(const std::string& bytes)
{
    return QString::fromUtf8(bytes.data(), int(bytes.size()));
}

std::string toLatin1(const QString& characters)
{
    // Qt's own conversion gives a QByteArray, which would have to be copied once more.
    const int size = characters.size();
    const ushort* const units = characters.utf16();
    std::string bytes(std::string::size_type(size), '\0');
    char* const out = &bytes[0];
    for (int i = 0; i < size; ++i)
        out[i] = static_cast<char>(units[i] > 0xFF ? '?' : units[i]);
    return bytes;
}

QString fromLatin1UpToNul(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData(), lengthUpToNul(bytes));
}

QByteArray toHostBytes(const QString& characters)
{
#if QT_VERSION < 0x050000
    return characters.toAscii();
#else
    return characters.toLatin1();
#endif
}

QString fromHostBytes(const QByteArray& bytes)
{
#if QT_VERSION < 0x050000
    return QString::fromAscii(bytes.constData(), lengthUpToNul(bytes));
#else
    return fromLatin1UpToNul(bytes);
#endif
}

} // namespace text
