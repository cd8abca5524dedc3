#include "tools/host/service/configure.h"

#include "tools/host/config/config_file.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"
#include "tools/host/value/host_value.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <utility>

namespace tovik_host::service {

namespace {

/// Qt's wildcards stop at slashes, as in paths of files; in names a slash is a character like
/// others.
QString withoutSlashes(QString text)
{
    return text.replace(u'/', QChar(0xE000));
}

QRegularExpression wildcard(const QString& pattern)
{
    QRegularExpression expression(
        QRegularExpression::wildcardToRegularExpression(withoutSlashes(pattern)));
    if (!expression.isValid())
        throw terminal::UsageError(
            u"the pattern \"%1\" is not valid: a \"[\" has no \"]\", or a range in brackets runs "
            "backwards; \"[[]\" stands for the character \"[\""_s.arg(pattern));
    return expression;
}

/// Where the slashes are that may be between group and item; within brackets they are characters.
QVector<int> slashesIn(const QString& pattern)
{
    QVector<int> slashes;
    for (int i = 0; i < pattern.size(); ++i) {
        if (pattern.at(i) == u'/') {
            slashes << i;
        } else if (pattern.at(i) == u'[') {
            // A bracket that comes first, or after "!", does not close.
            const int first = i + (pattern.midRef(i + 1, 1) == QLatin1String("!") ? 2 : 1);
            const int end = pattern.indexOf(u']', first + 1);
            i = end < 0 ? i : end;
        }
    }
    return slashes;
}

void refuseEmpty(const QString& pattern)
{
    if (pattern.isEmpty())
        throw terminal::UsageError(u"a pattern must not be empty"_s);
}

bool isMatch(const QRegularExpression& expression, const QString& text)
{
    return expression.match(withoutSlashes(text)).hasMatch();
}

/// One of the user's words, and whether it has met an item.
struct Word
{
    QString option; ///< That it was given with.
    QString text;
    ItemTest means;
    bool is_met = false;
};

/// Asks all words, so that none that would match is complained about.
bool meet(QVector<Word>& words, const OfferedItem& item)
{
    bool is_any_met = false;
    for (Word& word : words) {
        const bool is_met = word.means(item);
        word.is_met = word.is_met || is_met;
        is_any_met = is_any_met || is_met;
    }
    return is_any_met;
}

/// What nobody is called, with what it may stand for: an item, or the items of a group.
QString missingText(const QString& text, const QVector<OfferedItem>& offered)
{
    QStringList names;
    for (const OfferedItem& item : offered)
        names << item.path() << item.name << item.id << item.group + QLatin1String("/*");
    const QString near = terminal::nearText(text, names);
    const QString quoted = u"\"%1\""_s.arg(text);
    return near.isEmpty() ? quoted : quoted + u" (%1)"_s.arg(near.mid(2));
}

} // namespace

ItemTest itemPattern(const QString& text, const QVector<OfferedItem>& offered)
{
    refuseEmpty(text);
    const auto is_called = [text](const OfferedItem& item) {
        return text == item.name || text == item.id || text == item.path();
    };
    if (std::any_of(offered.begin(), offered.end(), is_called))
        return is_called;
    const QRegularExpression whole = wildcard(text);
    // The pattern, taken apart at each of its slashes outside brackets.
    QVector<std::pair<QRegularExpression, QRegularExpression>> splits;
    for (const int slash : slashesIn(text))
        splits.append({wildcard(text.left(slash)), wildcard(text.mid(slash + 1))});
    return [whole, splits](const OfferedItem& item) {
        const auto fits = [&item](const auto& split) {
            return isMatch(split.first, item.group) && isMatch(split.second, item.name);
        };
        return isMatch(whole, item.name) || std::any_of(splits.begin(), splits.end(), fits);
    };
}

void checkFilter(const ItemFilter& filter)
{
    for (const QString& text : filter.patterns + filter.excluded)
        refuseEmpty(text);
    for (const QString& name : filter.types)
        config::itemType(name, u"--type"_s);
}

FilteredItems filterItems(const QVector<OfferedItem>& offered, const ItemFilter& filter)
{
    checkFilter(filter);
    QVector<Word> patterns;
    QVector<Word> excluded;
    QVector<Word> types;
    for (const QString& text : filter.patterns)
        patterns << Word{QString(), text, itemPattern(text, offered)};
    for (const QString& text : filter.excluded)
        excluded << Word{u"--exclude "_s, text, itemPattern(text, offered)};
    for (const QString& name : filter.types)
        types << Word{u"--type "_s, name,
                      [name](const OfferedItem& item) { return item.type == name; }};

    FilteredItems result;
    for (const OfferedItem& item : offered) {
        const bool is_wanted = meet(patterns, item) || patterns.isEmpty();
        const bool is_excluded = meet(excluded, item);
        const bool is_of_type = meet(types, item) || types.isEmpty();
        if (is_wanted && !is_excluded && is_of_type)
            result.items << item;
    }
    for (const Word& word : patterns + excluded + types) {
        if (!word.is_met)
            result.without_match << word.option + missingText(word.text, offered);
    }
    return result;
}

namespace {

QString numbered(const QString& name, const QSet<QString>& used, int* number)
{
    QString candidate;
    do
        candidate = u"%1 (%2)"_s.arg(name, QString::number(++*number));
    while (used.contains(candidate));
    return candidate;
}

config::ItemConfig configOf(const OfferedItem& item)
{
    config::ItemConfig config;
    config.id = item.id;
    config.type = value::findItemType(item.type);
    const bool is_text = config.type && config.type->size == 0;
    if (is_text && item.length >= 1 && item.length <= config::limits::length)
        config.length = item.length;
    return config;
}

} // namespace

QString naturalName(const QString& group, const QString& item)
{
    return terminal::printable(group + u'.' + item, u'_');
}

NamedItems nameItems(const QVector<OfferedItem>& chosen)
{
    NamedItems named;
    QSet<QString> used;
    // The natural names go first: a number must not take the name of an item further down.
    for (const OfferedItem& item : chosen)
        used.insert(naturalName(item.group, item.name));
    QSet<QString> given;
    QHash<QString, int> numbers;
    for (const OfferedItem& item : chosen) {
        const QString natural = naturalName(item.group, item.name);
        config::ItemConfig config = configOf(item);
        config.name = natural;
        if (given.contains(natural)) {
            if (!numbers.contains(natural))
                numbers.insert(natural, 1);
            config.name = numbered(natural, used, &numbers[natural]);
            used.insert(config.name);
            named.warnings
                << u"\"%1\" is the name of another item already; the one with the id \"%2\" is "
                   "called \"%3\""_s.arg(natural, terminal::printable(item.id), config.name);
        }
        given.insert(config.name);
        named.items << config;
    }
    return named;
}

} // namespace tovik_host::service
