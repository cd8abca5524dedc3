#ifndef TOOLS_HOST_SERVICE_DIFF_ITEMS_H
#define TOOLS_HOST_SERVICE_DIFF_ITEMS_H

#include "tools/host/config/config.h"
#include "tools/host/service/catalogue.h"

#include <QString>
#include <QVector>

namespace tovik_host::service {

/// One side of a comparison.
struct DiffSide
{
    bool is_config = false;     ///< It is the items that a host uses, not all that a service has.
    QVector<OfferedItem> items; ///< Those of a configuration have no group, and its names.
    QList<PropertyTovikIotGroup> groups; ///< Of a catalogue.
};

DiffSide diffSide(const Catalogue& catalogue);
DiffSide diffSide(const config::HostConfig& config);

struct Difference
{
    enum Kind
    {
        gone,
        added,
        renamed,
        retyped,
        moved,
        resized,
        group_renamed, ///< This one and the next are of a group: its id, its name.
        access
    };

    Kind kind = gone;
    QString id;
    QString path; ///< "Group/Item" in the old state, if it was there; of a configuration the name.
    /// What has changed, before and after it; of an item that is gone or added its type. Groups by
    /// their names.
    QString before = QString();
    QString after = QString();
    /// The id that an item of the same name has now; of items that are gone only.
    QString same_name_id = QString();
};

/// What has changed between \a before and \a after, in the order of the items there.
///
/// Items are the same if they have the same id. If one side is a configuration, only its items
/// count, and only whether they are there, their names and their types; a catalogue's item then has
/// the name that a configuration would give it, and may be used under several. With two catalogues
/// also group and length count, and first come the groups that are there on both sides: names and
/// access.
QVector<Difference> findDifferences(const DiffSide& before, const DiffSide& after);

/// The word for a kind in JSON and on the command line, such as "renamed".
QString kindName(Difference::Kind kind);
/// The difference as one line for reading.
QString differenceLine(const Difference& difference);

} // namespace tovik_host::service

#endif
