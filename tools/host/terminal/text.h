#ifndef TOOLS_HOST_TERMINAL_TEXT_H
#define TOOLS_HOST_TERMINAL_TEXT_H

#include <QString>
#include <QStringList>
#include <QVector>

/// \file
/// Texts, and how they stand in columns of a terminal.

namespace tovik_host {

/// `u"..."_s` as Qt has it from version 6.4 on.
inline QString operator""_s(const char16_t* text, std::size_t size)
{
    return QString(reinterpret_cast<const QChar*>(text), int(size));
}

} // namespace tovik_host

namespace tovik_host::terminal {

/// \a text with a visible \a mark in place of every control character: what a service says must not
/// steer the user's terminal.
QString printable(const QString& text, QChar mark = QChar(0x00B7));
/// Columns that \a text takes: none for a combining mark, two for a wide East Asian character.
int displayWidth(const QString& text);
/// \a text cut to \a columns, with an ellipsis in the last one if anything was cut.
QString clipped(const QString& text, int columns);
/// \a text cut or filled with spaces to exactly \a columns.
QString fitted(const QString& text, int columns);
/// Rows of cells as lines, whose columns are as wide as their widest cell but no wider than
/// \a widest. Nothing stands after the last cell that is not empty.
QStringList columns(const QVector<QStringList>& rows, const QString& indent = QString(),
                    int widest = 1 << 20);
QString trimmedRight(QString line);

/// How many letters have to be inserted, removed or replaced to make one text of the other; upper
/// and lower case are the same.
int editDistance(const QString& one, const QString& other);

/// Whether a typing mistake may have made \a written of \a meant.
bool isNear(const QString& written, const QString& meant);
/// "; NAME?" for the one of \a names that may be meant; empty if none is near.
QString nearText(const QString& written, const QStringList& names);

} // namespace tovik_host::terminal

#endif
