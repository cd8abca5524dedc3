#include "compat/text.h"

namespace text {

namespace {

int lengthUpToNul(const QByteArray& bytes)
{
    const int nul = bytes.indexOf('\0');
    return nul < 0 ? bytes.size() : nul;
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
    const QByteArray bytes = characters.toLatin1();
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
