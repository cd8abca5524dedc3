#include "compat/text.h"

#include <cstring>
#include <utility>

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

std::string toLatin1(QString characters)
{
    // A text that nobody else uses is converted where it stands.
    const QByteArray bytes = std::move(characters).toLatin1();
    return std::string(bytes.constData(), std::string::size_type(bytes.size()));
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
