#ifndef TOOLS_HOST_SERVICE_CONFIGURE_H
#define TOOLS_HOST_SERVICE_CONFIGURE_H

#include "tools/host/config/config.h"
#include "tools/host/service/catalogue.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

namespace tovik_host::service {

using ItemTest = std::function<bool(const OfferedItem&)>;

/// What a pattern means: `GROUP/ITEM` is compared with both names, anything else with the item's
/// name. An id stands for itself, without wildcards, as ids often begin with the name of the group.
/// `*` stands for any characters, `?` for one, `[...]` for one of several; names that contain
/// slashes themselves match as they are written. What is the whole name, path or id of an item
/// among those \a offered stands for it alone, whatever it would be as a pattern. Throws UsageError
/// when \a text is empty, or neither a pattern nor what an item is called.
ItemTest itemPattern(const QString& text, const QVector<OfferedItem>& offered);

struct ItemFilter
{
    QStringList patterns; ///< An item must match one; empty: all do.
    QStringList excluded; ///< An item must match none.
    QStringList types;    ///< An item must be of one; empty: all are.
};

struct FilteredItems
{
    QVector<OfferedItem> items;
    /// Patterns and types, as the user wrote them, to which no item of the catalogue belongs.
    QStringList without_match;
};

/// Throws UsageError for an empty pattern and for what is no type: what can be known of a filter
/// without a catalogue.
void checkFilter(const ItemFilter& filter);

/// Throws UsageError for what is no pattern and no type.
FilteredItems filterItems(const QVector<OfferedItem>& offered, const ItemFilter& filter);

/// Items as a configuration has them, and what its user should know about their names.
struct NamedItems
{
    QVector<config::ItemConfig> items;
    QStringList warnings;
};

/// The name that a host gets for an item: "Group.Item", with an underscore for every control
/// character, which nobody could type.
QString naturalName(const QString& group, const QString& item);

/// Gives every item a name of its own. The first one of a name has it; the others get a number
/// after it, and a warning each.
NamedItems nameItems(const QVector<OfferedItem>& chosen);

/// Lets a user choose items, line by line: takes what was typed and gives what is to be shown. It
/// knows of no terminal, so that any will do.
class ConfigureDialogue
{
public:
    enum class State
    {
        open,
        done, ///< The user has chosen.
        quit  ///< The user wants nothing of it.
    };

    /// \param page how many items are shown at a time.
    ConfigureDialogue(const QVector<OfferedItem>& offered, int page);

    /// What is shown first.
    QString opening();
    QString prompt() const;
    /// Takes one line of the user and returns the answer, which ends with a line break.
    QString answer(const QString& typed);

    State state() const { return state_; }
    /// The chosen items in the catalogue's order.
    QVector<OfferedItem> chosen() const;

private:
    QString select(const QString& text, bool choose);
    /// The items that \a text names; \a problem says why there are none.
    QVector<int> itemsNamed(const QString& text, QString* problem) const;
    QString list(const QVector<int>& items);
    QString nextPage();
    QString search(const QString& text);
    QString preview() const;
    QString finish();
    QString line(int index) const;

    QVector<OfferedItem> offered_;
    QVector<bool> chosen_;
    QVector<int> listed_; ///< What the pages are of.
    int shown_ = 0;       ///< How many of them have been shown.
    int page_;
    State state_ = State::open;
};

} // namespace tovik_host::service

#endif
