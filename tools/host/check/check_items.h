#ifndef TOOLS_HOST_CHECK_CHECK_ITEMS_H
#define TOOLS_HOST_CHECK_CHECK_ITEMS_H

#include "tools/host/check/check_step.h"
#include "tools/host/config/config.h"
#include "tools/host/service/catalogue.h"
#include "tools/host/service/cloud_client.h"

#include <QHash>
#include <QList>
#include <QVariant>
#include <QVector>

/// \file
/// What the service's answers mean for the values of a host. Facts in, judged steps out.
namespace tovik_host::check {

/// All items of a catalogue, by their ids.
using CatalogueItems = QHash<QString, service::OfferedItem>;
CatalogueItems itemsOf(const QList<PropertyTovikIotGroup>& groups);

/// What was found out about one served item.
struct ItemFinding
{
    config::ItemConfig item;
    bool is_read = false;           ///< Whether it was asked for at all.
    service::ClientOutcome outcome; ///< Of the read; Done with a reason: of another JSON type.
    QVariant value;                 ///< Invalid: none, or none of the item's type.
    bool is_known = false;          ///< The catalogue has the item.
    QString catalogue_type;         ///< Its type there.
    QString suggestion; ///< In words, what else may be meant by an id that is not known.
};

/// What the catalogue says about \a item, before it is read.
ItemFinding lookUpItem(const config::ItemConfig& item, const CatalogueItems& catalogue);

/// A login, or the loading of the catalogue, that has failed or not.
/// \param name of the step
CheckStep judgeConversation(const char* name, const service::ClientOutcome& outcome);
CheckStep judgeCatalogue(const service::ClientOutcome& outcome,
                         const QList<PropertyTovikIotGroup>& groups);
/// One served item: whether it is known, of which type it is, and what a read gave.
CheckStep judgeItem(const ItemFinding& finding);
/// What the driver's cycle comes to, given its items in the order of the configuration: how long it
/// takes, how old values get, and which item ends it before its end.
/// \param is_complete whether all served items are there
CheckStep judgeCycle(const QVector<ItemFinding>& findings, bool is_complete);

} // namespace tovik_host::check

#endif
