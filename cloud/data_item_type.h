#ifndef CLOUD_DATA_ITEM_TYPE_H
#define CLOUD_DATA_ITEM_TYPE_H

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <picojson.h>

/// Everything about one type of data item. The types are the rows of one table; no other code
/// tests a type's name.
///
/// A value has four forms: the service's JSON, the cached variant, the JSON of a write, and the
/// host's bytes. Conversions have no state and may run in any thread.
struct DataItemType
{
    /// The name in configurations, matched whole and case-sensitively.
    const char* name;
    /// A second name that the service uses for the type, or null.
    const char* service_alias;
    /// Whether a JSON value is of the kind that the service sends for the type.
    bool (picojson::value::*is_expected)() const;
    /// A JSON value of that kind as the variant to cache.
    QVariant (*from_json)(const picojson::value& json);
    /// A variant as the member "value" of a write. Not a number and the infinities raise
    /// picojson's `std::overflow_error`.
    picojson::value (*to_json)(const QVariant& value);
    /// A cached variant as the host's bytes; \a data_length is the host's wish for a text.
    QByteArray (*to_host)(const QVariant& value, int data_length);
    /// The host's bytes as the variant to cache and to write.
    QVariant (*from_host)(const QByteArray& bytes);
};

/// The type of that configured name, or null.
const DataItemType* findDataItemType(const QString& name);
/// The type that the service calls so, or null.
const DataItemType* findServiceType(const QString& service_name);
/// The type's name as a text that all users share: a catalogue repeats it for every item.
QString sharedName(const DataItemType& type);

#endif
