#ifndef COMPAT_TEXT_H
#define COMPAT_TEXT_H

#include <QByteArray>
#include <QString>

#include <string>

/// \file
/// Text at the borders between JSON bytes, Qt strings and the host's bytes.
///
/// Qt 4 took implicit 8-bit conversions as Latin-1, Qt 5 takes them as UTF-8 and loses what is not.
/// Every conversion of the library is therefore one of these, by name. NUL characters are kept
/// unless a function says otherwise.
namespace text {

/// Bytes as Latin-1 text: every byte is one character.
QString fromLatin1(const std::string& bytes);
/// Bytes as UTF-8 text.
QString fromUtf8(const std::string& bytes);
/// Text as Latin-1 bytes; a character outside Latin-1 becomes a question mark.
std::string toLatin1(const QString& characters);
/// Bytes up to the first NUL (all, if there is none) as Latin-1 text.
QString fromLatin1UpToNul(const QByteArray& bytes);

/// A text value in the host's 8-bit characters: the host's own C-string codec where Qt has one
/// (Qt 4), Latin-1 elsewhere.
QByteArray toHostBytes(const QString& characters);
/// The host's 8-bit characters up to the first NUL as text.
QString fromHostBytes(const QByteArray& bytes);

} // namespace text

#endif
