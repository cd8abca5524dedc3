#include "tools/host/service/configure_choice.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"
#include "tools/host/value/host_value.h"

#include <QHash>
#include <QSet>

#include <algorithm>

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

/// Some of the user's words, and which of them have met an item.
template <class Word>
struct Words
{
    QVector<Word> words;
    QVector<bool> met;

    void add(const Word& word)
    {
        words << word;
        met << false;
    }

    template <class Test>
    bool meet(Test test)
    {
        bool any = false;
        for (int i = 0; i < words.size(); ++i) {
            if (!test(words.at(i)))
                continue;
            met[i] = true;
            any = true;
        }
        return any;
    }
};

QString typeNamed(const QString& name)
{
    if (!value::findItemType(name)) {
        throw terminal::UsageError(
            u"--type: \"%1\" is no type; the types are: %2"_s.arg(name, value::allItemTypeNames()));
    }
    return name;
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

ItemPattern::ItemPattern(const QString& text, const QVector<OfferedItem>& offered) : text_(text)
{
    refuseEmpty(text);
    is_exact_ = std::any_of(offered.begin(), offered.end(),
                            [this](const OfferedItem& item) { return isCalled(item); });
    if (is_exact_)
        return;
    whole_ = wildcard(text);
    for (const int slash : slashesIn(text))
        splits_.append({wildcard(text.left(slash)), wildcard(text.mid(slash + 1))});
}

bool ItemPattern::isCalled(const OfferedItem& item) const
{
    return text_ == item.name || text_ == item.id || text_ == item.path();
}

bool ItemPattern::matches(const OfferedItem& item) const
{
    if (is_exact_)
        return isCalled(item);
    if (isMatch(whole_, item.name))
        return true;
    return std::any_of(splits_.begin(), splits_.end(), [&item](const auto& split) {
        return isMatch(split.first, item.group) && isMatch(split.second, item.name);
    });
}

void checkFilter(const ItemFilter& filter)
{
    for (const QString& text : filter.patterns + filter.excluded)
        refuseEmpty(text);
    for (const QString& name : filter.types)
        typeNamed(name);
}

FilteredItems filterItems(const QVector<OfferedItem>& offered, const ItemFilter& filter)
{
    Words<ItemPattern> patterns;
    Words<ItemPattern> excluded;
    Words<QString> types;
    for (const QString& text : filter.patterns)
        patterns.add(ItemPattern(text, offered));
    for (const QString& text : filter.excluded)
        excluded.add(ItemPattern(text, offered));
    for (const QString& name : filter.types)
        types.add(typeNamed(name));

    FilteredItems result;
    for (const OfferedItem& item : offered) {
        const auto matches = [&item](const ItemPattern& pattern) { return pattern.matches(item); };
        // All are asked, so that none that would match is complained about.
        const bool is_wanted = patterns.meet(matches);
        const bool is_excluded = excluded.meet(matches);
        const bool is_of_type =
            types.meet([&item](const QString& type) { return type == item.type; });
        if ((is_wanted || patterns.words.isEmpty()) && !is_excluded &&
            (is_of_type || types.words.isEmpty()))
            result.items << item;
    }
    const auto report = [&](const auto& words, const QString& start, auto text_of) {
        for (int i = 0; i < words.words.size(); ++i) {
            if (!words.met.at(i))
                result.without_match << start + missingText(text_of(words.words.at(i)), offered);
        }
    };
    const auto text_of_pattern = [](const ItemPattern& pattern) { return pattern.text(); };
    report(patterns, QString(), text_of_pattern);
    report(excluded, u"--exclude "_s, text_of_pattern);
    report(types, u"--type "_s, [](const QString& type) { return type; });
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

config::ItemConfig configOf(const CatalogueItem& item)
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
    QString name = group + u'.' + item;
    for (QChar& character : name) {
        const bool breaks =
            character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
        if (character.category() == QChar::Other_Control || breaks)
            character = u'_';
    }
    return name;
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
