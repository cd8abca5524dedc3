#include "tools/host/config/item_choice.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

#include <QSet>

#include <fnmatch.h>

namespace tovik_host::config {

QVector<ItemConfig> chosenItems(const QVector<ItemConfig>& all, const QStringList& wanted,
                                const QString& whose, const QString& advice)
{
    QVector<ItemConfig> chosen;
    QSet<QString> taken;
    const auto take = [&](const ItemConfig& item) {
        if (!taken.contains(item.name))
            chosen << item;
        taken << item.name;
    };
    for (const QString& text : wanted) {
        if (const ItemConfig* item = findItem(all, text)) {
            take(*item);
            continue;
        }
        const QByteArray pattern = text.toUtf8();
        bool is_met = false;
        QStringList names;
        for (const ItemConfig& item : all) {
            names << item.name;
            if (::fnmatch(pattern.constData(), item.name.toUtf8().constData(), 0) != 0)
                continue;
            is_met = true;
            take(item);
        }
        if (is_met)
            continue;
        const QString near = terminal::nearText(text, names);
        throw terminal::UsageError(u"%1 has no item \"%2\""_s.arg(whose, text) +
                                   (near.isEmpty() ? advice : near));
    }
    return chosen;
}

} // namespace tovik_host::config
