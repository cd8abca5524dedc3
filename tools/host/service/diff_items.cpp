#include "tools/host/service/diff_items.h"

#include "tools/host/service/configure.h"
#include "tools/host/terminal/text.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace tovik_host::service {

namespace {

using Positions = QHash<QString, QVector<int>>;

Positions positionsById(const QVector<OfferedItem>& items)
{
    Positions positions;
    for (int i = 0; i < items.size(); ++i)
        positions[items.at(i).id] << i;
    return positions;
}

/// Which items of the two sides belong together.
struct Partners
{
    QVector<QVector<int>> of; ///< For every item before: those after it.
    QVector<bool> is_new;     ///< For every item after: that it belongs to none.

    Partners(int before, int after) : of(before), is_new(after, true) {}

    void join(int before, int after)
    {
        of[before] << after;
        is_new[after] = false;
    }
};

/// Items of two sides of one kind, one to one. An id that stands in several groups goes to its own
/// group first.
Partners partners(const QVector<OfferedItem>& before, const QVector<OfferedItem>& after)
{
    Positions free = positionsById(after);
    Partners found(before.size(), after.size());
    const auto take = [&](int index, bool in_same_group) {
        if (!found.of.at(index).isEmpty() || !free.contains(before.at(index).id))
            return;
        QVector<int>& candidates = free[before.at(index).id];
        for (int i = 0; i < candidates.size(); ++i) {
            const bool is_same = after.at(candidates.at(i)).group_id == before.at(index).group_id;
            if (in_same_group && !is_same)
                continue;
            found.join(index, candidates.takeAt(i));
            return;
        }
    };
    for (const bool in_same_group : {true, false}) {
        for (int i = 0; i < before.size(); ++i)
            take(i, in_same_group);
    }
    return found;
}

/// Whether a configuration gives \a name to an item of this natural name; it may have had to put a
/// number after it.
bool isNameFor(const QString& name, const QString& natural)
{
    static const QRegularExpression number(u" \\(\\d+\\)\\z"_s);
    return name == natural || QString(name).remove(number) == natural;
}

/// For every item of a configuration the catalogue's, or -1: several may use the same one. Of
/// several with the id it is the one that the name is for.
QVector<int> usedItems(const QVector<OfferedItem>& config, const QVector<OfferedItem>& catalogue)
{
    const Positions positions = positionsById(catalogue);
    QVector<int> used;
    for (const OfferedItem& item : config) {
        const QVector<int> candidates = positions.value(item.id);
        const auto named = std::find_if(candidates.begin(), candidates.end(), [&](int candidate) {
            const OfferedItem& offered = catalogue.at(candidate);
            return isNameFor(item.name, naturalName(offered.group, offered.name));
        });
        used << (named != candidates.end() ? *named : candidates.value(0, -1));
    }
    return used;
}

Partners partners(const DiffSide& before, const DiffSide& after)
{
    if (before.is_config == after.is_config)
        return partners(before.items, after.items);
    Partners found(before.items.size(), after.items.size());
    const QVector<int> used = before.is_config ? usedItems(before.items, after.items)
                                               : usedItems(after.items, before.items);
    for (int i = 0; i < used.size(); ++i) {
        if (used.at(i) >= 0)
            found.join(before.is_config ? i : used.at(i), before.is_config ? used.at(i) : i);
    }
    return found;
}

class Comparison
{
public:
    Comparison(const DiffSide& before, const DiffSide& after) : before_(before), after_(after) {}

    QVector<Difference> run()
    {
        compareGroups();
        const Partners found = partners(before_, after_);
        QHash<QString, QString> ids_of_paths;
        for (const OfferedItem& item : after_.items)
            ids_of_paths.insert(nameOf(item), item.id);
        for (int i = 0; i < before_.items.size(); ++i) {
            const OfferedItem& item = before_.items.at(i);
            for (const int partner : found.of.at(i))
                compare(item, after_.items.at(partner));
            if (found.of.at(i).isEmpty() && (before_.is_config || !after_.is_config)) {
                found_ << Difference{Difference::gone, item.id,   item.path(),
                                     item.type,        QString(), ids_of_paths.value(nameOf(item))};
            }
        }
        for (int i = 0; i < after_.items.size(); ++i) {
            const OfferedItem& item = after_.items.at(i);
            if (found.is_new.at(i) && (after_.is_config || !before_.is_config))
                found_ << Difference{Difference::added, item.id, item.path(), QString(), item.type};
        }
        return found_;
    }

private:
    /// What identifies an item for people: in catalogues group and name, else the name of a
    /// configuration.
    static QString nameOf(const OfferedItem& item)
    {
        return item.group.isEmpty() ? item.name : naturalName(item.group, item.name);
    }

    void add(Difference::Kind kind, const OfferedItem& item, const QString& old_text,
             const QString& new_text)
    {
        if (old_text != new_text)
            found_ << Difference{kind, item.id, item.path(), old_text, new_text};
    }

    void compareGroups()
    {
        QHash<QString, const PropertyTovikIotGroup*> old_groups;
        for (const PropertyTovikIotGroup& group : before_.groups)
            old_groups.insert(group.group_id, &group);
        for (const PropertyTovikIotGroup& group : after_.groups) {
            // An id that stands there twice is compared once.
            const PropertyTovikIotGroup* old_group = old_groups.take(group.group_id);
            if (!old_group)
                continue;
            if (old_group->name != group.name)
                found_ << Difference{Difference::group_renamed, group.group_id, old_group->name,
                                     old_group->name, group.name};
            if (old_group->permission != group.permission)
                found_ << Difference{Difference::access, group.group_id, old_group->name,
                                     old_group->permission, group.permission};
        }
    }

    void compare(const OfferedItem& old_item, const OfferedItem& new_item)
    {
        if (before_.is_config || after_.is_config) {
            compareNames(old_item, new_item);
            add(Difference::retyped, old_item, old_item.type, new_item.type);
            return;
        }
        add(Difference::renamed, old_item, old_item.name, new_item.name);
        add(Difference::retyped, old_item, old_item.type, new_item.type);
        if (old_item.group_id != new_item.group_id) {
            found_ << Difference{Difference::moved, old_item.id, old_item.path(), old_item.group,
                                 new_item.group};
        }
        add(Difference::resized, old_item, QString::number(old_item.length),
            QString::number(new_item.length));
    }

    void compareNames(const OfferedItem& old_item, const OfferedItem& new_item)
    {
        const QString old_name = nameOf(old_item);
        const QString new_name = nameOf(new_item);
        const bool both = before_.is_config && after_.is_config;
        const QString config_name = before_.is_config ? old_name : new_name;
        const QString natural = before_.is_config ? new_name : old_name;
        if (!both && isNameFor(config_name, natural))
            return;
        add(Difference::renamed, old_item, old_name, new_name);
    }

    const DiffSide& before_;
    const DiffSide& after_;
    QVector<Difference> found_;
};

/// How a kind is told.
struct KindText
{
    const char* name;
    const char* text; ///< With what was before, and what is after.
    bool has_names;   ///< They go into quotes.
};

const KindText kinds[] = {{"gone", "", false},
                          {"added", "", false},
                          {"renamed", "renamed from %1 to %2", true},
                          {"type", "type %2, was %1", false},
                          {"moved", "moved from group %1 to %2", true},
                          {"length", "length %2, was %1", false},
                          {"group-renamed", "group renamed from %1 to %2", true},
                          {"access", "access %2, was %1", true}};

} // namespace

DiffSide diffSide(const Catalogue& catalogue)
{
    return {false, offeredItems(catalogue.groups), catalogue.groups};
}

DiffSide diffSide(const config::HostConfig& config)
{
    DiffSide side;
    side.is_config = true;
    for (const config::ItemConfig& item : config.items)
        side.items << OfferedItem{item.id, item.name, QLatin1String(item.type->name), item.length};
    return side;
}

QVector<Difference> findDifferences(const DiffSide& before, const DiffSide& after)
{
    return Comparison(before, after).run();
}

QString kindName(Difference::Kind kind)
{
    return QString::fromLatin1(kinds[kind].name);
}

QString differenceLine(const Difference& difference)
{
    const auto quoted = [](const QString& text) {
        return u"\"%1\""_s.arg(terminal::printable(text));
    };
    const QString subject = u" %1 (%2): "_s.arg(terminal::printable(difference.path),
                                                terminal::printable(difference.id));
    if (difference.kind == Difference::added)
        return u'+' + subject + u"added, "_s + difference.after;
    if (difference.kind == Difference::gone) {
        const QString& id = difference.same_name_id;
        return u'-' + subject + u"gone"_s +
               (id.isEmpty() ? QString() : u"; an item of this name has the id "_s + quoted(id));
    }
    const KindText& kind = kinds[difference.kind];
    return u'~' + subject +
           QString::fromLatin1(kind.text).arg(
               kind.has_names ? quoted(difference.before) : difference.before,
               kind.has_names ? quoted(difference.after) : difference.after);
}

} // namespace tovik_host::service
