#ifndef CLOUD_CATALOGUE_H
#define CLOUD_CATALOGUE_H

#include "cloud/service_message.h"
#include "property/property_tovik_iot.h"

/// \file
/// The service's catalogue: replies of the group list and of a group's data-item list as records.
///
/// Records are read one element at a time, because the items of a kept group are asked for before
/// the next group is looked at. An element that is no object raises picojson's
/// `std::runtime_error`.
namespace catalogue {

/// Finds the array of groups in a checked reply.
/// \param groups receives the array, or null when the service reports no group.
/// \return success or a failure of the client, both with their messages logged.
service::Outcome findGroups(const picojson::object& reply, const picojson::array** groups);

/// Finds the array of data items in a checked reply; as findGroups(). \a group_name is for the log.
service::Outcome findDataitems(const picojson::object& reply, const QString& group_name,
                               const picojson::array** dataitems);

/// Reads one group, without its items. False: it has no id or no name and is to be dropped.
bool readGroup(const picojson::value& element, PropertyTovikIotGroup* group);

/// Reads one data item. False: no id, no name or an unknown type, and it is to be dropped.
bool readDataitem(const picojson::value& element, PropertyTovikIotDataItem* item);

} // namespace catalogue

#endif
