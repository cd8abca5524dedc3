#ifndef TOOLS_HOST_STORED_JSON_H
#define TOOLS_HOST_STORED_JSON_H

#include "tools/host/config/json_file.h"
#include "tools/host/stored/stream.h"
#include "tools/host/value/json_text.h"

/// \file
/// The record as JSON that loses nothing: docs/configuration.md, "The record as JSON".
namespace tovik_host::stored {

/// The record; of its members, the first that are \a known.
value::OrderedJson recordToJson(const PropertyTovikIot& record, int known = all_known);
/// What is known of the format, as the member "stream".
value::OrderedJson formatToJson(const Hints& format);

/// Reads the record that stands at "tovik_iot". Members that are missing have the record's
/// defaults. Throws UsageError with file, line and member for anything that is wrong.
PropertyTovikIot recordFromJson(const config::JsonFile& file);
/// Reads the member "stream", which may be missing. Throws UsageError as recordFromJson().
Hints formatFromJson(const config::JsonFile& file);

} // namespace tovik_host::stored

#endif
