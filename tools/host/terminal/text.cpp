#include "tools/host/terminal/text.h"

#include <QChar>

#include <numeric>
#include <vector>

namespace tovik_host::terminal {

namespace {

struct Range
{
    uint first;
    uint last;
};

const Range wide_ranges[] = {
    {0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0xA4CF}, {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
    {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};

int widthOf(uint code)
{
    const QChar::Category category = QChar::category(code);
    const bool no_width = category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing ||
                          category == QChar::Other_Format;
    if (no_width && code != 0xAD)
        return 0;
    for (const Range& range : wide_ranges) {
        if (code >= range.first && code <= range.last)
            return 2;
    }
    return 1;
}

} // namespace

QString printable(const QString& text, QChar mark)
{
    QString shown = text;
    for (QChar& character : shown) {
        const bool breaks =
            character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
        if (character.category() == QChar::Other_Control || breaks)
            character = mark;
    }
    return shown;
}

int displayWidth(const QString& text)
{
    int width = 0;
    for (const uint code : text.toUcs4())
        width += widthOf(code);
    return width;
}

QString clipped(const QString& text, int columns)
{
    if (displayWidth(text) <= columns)
        return text;
    QString kept;
    int width = 0;
    for (const uint code : text.toUcs4()) {
        width += widthOf(code);
        if (width > columns - 1)
            break;
        kept += QString::fromUcs4(&code, 1);
    }
    return columns > 0 ? kept + QChar(0x2026) : QString();
}

QString fitted(const QString& text, int columns)
{
    const QString kept = clipped(text, columns);
    return kept + QString(qMax(0, columns - displayWidth(kept)), u' ');
}

QStringList columns(const QVector<QStringList>& rows, const QString& indent, int widest)
{
    QVector<int> widths;
    for (const QStringList& row : rows) {
        widths.resize(row.size());
        for (int i = 0; i < row.size(); ++i)
            widths[i] = qBound(widths.at(i), displayWidth(row.at(i)), widest);
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        QString line = indent;
        for (int i = 0; i < row.size(); ++i)
            line += fitted(row.at(i), widths.at(i)) + u"  "_s;
        lines << trimmedRight(line);
    }
    return lines;
}

QString trimmedRight(QString line)
{
    while (line.endsWith(u' '))
        line.chop(1);
    return line;
}

int editDistance(const QString& one, const QString& other)
{
    const QString from = one.toLower();
    const QString to = other.toLower();
    // Distances between the letters of `from` looked at so far and each beginning of `to`.
    std::vector<int> row(std::size_t(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < to.size(); ++j) {
            const std::size_t at = std::size_t(j) + 1;
            const int replaced = diagonal + (from.at(i) == to.at(j) ? 0 : 1);
            diagonal = row[at];
            row[at] = qMin(replaced, 1 + qMin(row[at], row[at - 1]));
        }
    }
    return row.back();
}

bool isNear(const QString& written, const QString& meant)
{
    const int allowed = qMax(1, qMin(written.size(), meant.size()) / 3);
    // The lengths alone tell most of a long list apart.
    return qAbs(written.size() - meant.size()) <= allowed &&
           editDistance(written, meant) <= allowed;
}

QString nearText(const QString& written, const QStringList& names)
{
    QString nearest;
    for (const QString& name : names) {
        if (isNear(written, name) &&
            (nearest.isEmpty() || editDistance(written, name) < editDistance(written, nearest)))
            nearest = name;
    }
    return nearest.isEmpty() ? QString() : u"; %1?"_s.arg(nearest);
}

} // namespace tovik_host::terminal
