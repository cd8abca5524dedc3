#include "tools/host/service/catalogue_text.h"

#include "tools/host/terminal/text_width.h"

#include <QStringList>
#include <QUrl>
#include <QVector>

namespace tovik_host::service {

namespace {

QString heading(const Catalogue& catalogue)
{
    return QStringLiteral("%1  project %2: %3, %4\n")
        .arg(QUrl(catalogue.url).toString(QUrl::RemoveUserInfo),
             terminal::printable(catalogue.project),
             counted(catalogue.groups.size(), QStringLiteral("group")),
             counted(catalogue.itemCount(), QStringLiteral("item")));
}

QString remarks(const CatalogueGroup& group, bool alert)
{
    QStringList remarks;
    if (group.isReadOnly())
        remarks << QStringLiteral("read-only");
    if (alert)
        remarks << QStringLiteral("alert");
    return remarks.join(QStringLiteral(", "));
}

QString trimmedRight(QString line)
{
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    return line + QLatin1Char('\n');
}

/// Lines of cells in columns as wide as their widest cell; the last one is as it comes.
QString columns(const QVector<QStringList>& lines, const QString& start = QString())
{
    QVector<int> widths;
    for (const QStringList& line : lines) {
        widths.resize(line.size());
        for (int i = 0; i < line.size(); ++i)
            widths[i] = qMax(widths.at(i), terminal::displayWidth(line.at(i)));
    }
    QString text;
    for (const QStringList& line : lines) {
        QString shown = start;
        for (int i = 0; i < line.size(); ++i)
            shown += terminal::fitted(line.at(i), widths.at(i)) + QStringLiteral("  ");
        text += trimmedRight(shown);
    }
    return text;
}

QString groupTree(const CatalogueGroup& group)
{
    QStringList parts = {terminal::printable(group.name),
                         QStringLiteral("(%1)").arg(terminal::printable(group.id)),
                         terminal::printable(group.location), remarks(group, group.alert)};
    parts.removeAll(QString());
    QString text = parts.join(QStringLiteral("  ")) + QLatin1Char('\n');
    if (group.items.isEmpty())
        return text + QStringLiteral("  (no items)\n");
    QVector<QStringList> lines;
    for (const CatalogueItem& item : group.items)
        lines << QStringList{terminal::printable(item.name), terminal::printable(item.id),
                             shownType(item), remarks(group, item.alert)};
    return text + columns(lines, QStringLiteral("  "));
}

} // namespace

QString catalogueTree(const Catalogue& catalogue)
{
    QString text = heading(catalogue);
    for (const CatalogueGroup& group : catalogue.groups)
        text += QLatin1Char('\n') + groupTree(group);
    return text;
}

QString catalogueTable(const Catalogue& catalogue)
{
    QVector<QStringList> lines = {{QStringLiteral("GROUP"), QStringLiteral("ITEM"),
                                   QStringLiteral("ID"), QStringLiteral("TYPE"),
                                   QStringLiteral("REMARKS")}};
    for (const CatalogueGroup& group : catalogue.groups) {
        for (const CatalogueItem& item : group.items) {
            lines << QStringList{terminal::printable(group.name), terminal::printable(item.name),
                                 terminal::printable(item.id), shownType(item),
                                 remarks(group, item.alert)};
        }
    }
    return columns(lines);
}

QString shownType(const CatalogueItem& item)
{
    return item.type == QLatin1String("String")
               ? QStringLiteral("%1(%2)").arg(item.type).arg(item.length)
               : item.type;
}

} // namespace tovik_host::service
