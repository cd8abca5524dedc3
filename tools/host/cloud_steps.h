#ifndef TOOLS_HOST_CLOUD_STEPS_H
#define TOOLS_HOST_CLOUD_STEPS_H

#include "property/property_tovik_iot_group.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <functional>

class TovikIot;

namespace tovik_host {

/// How far the loading of a catalogue is.
struct CatalogueProgress
{
    int groups_known = 0;  ///< In the service's list, those without id or name not counted.
    int groups_loaded = 0; ///< Whose items are there.
    int items = 0;         ///< In all loaded groups.
};

/// \file
/// Operations of the driver's client that it offers as part of a larger one only, put together from
/// its own parts: same requests, same checks, same debug lines.
///
/// They run in the client's thread, give its results (0, 256 or the service's code), and raise
/// `std::runtime_error` for the replies for which it does.
namespace cloud_steps {

/// Loads all groups with their items, as TovikIot::GetGroupList does, and tells of each.
/// \param groups receives what has been loaded, also when a later group fails.
int loadGroups(TovikIot& client, const QString& url,
               const std::function<void(const CatalogueProgress&)>& progress,
               QList<PropertyTovikIotGroup>* groups);

/// Reads the value of one item, as TovikIot::ReadDataitemValue does.
/// \param value receives the value, and stays as it is if that is not of the type's kind.
/// \param problem receives in words what kind of value came instead.
int readValue(TovikIot& client, const QString& url, const QString& id, const QString& type_name,
              QVariant* value, QString* problem);

} // namespace cloud_steps

} // namespace tovik_host

#endif
