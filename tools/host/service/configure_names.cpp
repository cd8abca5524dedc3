#include "tools/host/service/configure_names.h"

#include "tools/host/terminal/text_width.h"

#include <QHash>
#include <QSet>

namespace tovik_host::service {

namespace {

const int longest_text = 65535;

QString numbered(const QString& name, const QSet<QString>& used, int* number)
{
    QString candidate;
    do
        candidate = QStringLiteral("%1 (%2)").arg(name, QString::number(++*number));
    while (used.contains(candidate));
    return candidate;
}

config::ItemConfig configOf(const CatalogueItem& item)
{
    config::ItemConfig config;
    config.id = item.id;
    config.type = value::findItemType(item.type);
    const bool is_text = config.type && config.type->size == 0;
    if (is_text && item.length >= 1 && item.length <= longest_text)
        config.length = item.length;
    return config;
}

} // namespace

QString naturalName(const QString& group, const QString& item)
{
    QString name = group + QLatin1Char('.') + item;
    for (QChar& character : name) {
        const bool breaks =
            character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
        if (character.category() == QChar::Other_Control || breaks)
            character = QLatin1Char('_');
    }
    return name;
}

NamedItems nameItems(const QVector<OfferedItem>& chosen)
{
    NamedItems named;
    QSet<QString> used;
    // The natural names go first: a number must not take the name of an item further down.
    for (const OfferedItem& item : chosen)
        used.insert(naturalName(item.group, item.item.name));
    QSet<QString> given;
    QHash<QString, int> numbers;
    for (const OfferedItem& item : chosen) {
        const QString natural = naturalName(item.group, item.item.name);
        config::ItemConfig config = configOf(item.item);
        config.name = natural;
        if (given.contains(natural)) {
            if (!numbers.contains(natural))
                numbers.insert(natural, 1);
            config.name = numbered(natural, used, &numbers[natural]);
            used.insert(config.name);
            named.warnings << QStringLiteral("\"%1\" is the name of another item already; the one "
                                             "with the id \"%2\" is called \"%3\"")
                                  .arg(natural, terminal::printable(item.item.id), config.name);
        }
        given.insert(config.name);
        named.items << config;
    }
    return named;
}

} // namespace tovik_host::service
