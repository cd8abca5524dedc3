#ifndef TOOLS_HOST_STORED_JSON_H
#define TOOLS_HOST_STORED_JSON_H

#include "tools/host/config/member_reader.h"
#include "tools/host/stored_format.h"
#include "tools/host/stored_record.h"
#include "tools/host/value/json_text.h"

/// \file
/// The record as JSON that loses nothing: docs/configuration.md, "The record as JSON".
namespace tovik_host {

/// The record; members that a damaged stream did not give are left out.
/// \param hidden the texts for which `{"hidden": true}` stands if they are not empty
OrderedJson recordToJson(const StoredRecord& record, HiddenTexts hidden);

/// What is known of the format, as the member "stream".
OrderedJson formatToJson(const FormatHints& format);

/// The whole text of a file, with a line break at its end.
QByteArray storedJsonText(const OrderedJson& json);

/// Reads the record that stands at "tovik_iot". Members that are missing have the record's
/// defaults. Throws UsageError with file, line and member for anything that is wrong.
StoredRecord recordFromJson(const JsonFile& file);

/// Reads the member "stream", which may be missing. Throws UsageError as recordFromJson().
FormatHints formatFromJson(const JsonFile& file);

/// A text: null, a JSON text, or its UTF-16 code units where it is not well-formed.
OrderedJson textToJson(const QString& text);
/// A value with its type.
OrderedJson valueToJson(const StoredValue& value);

} // namespace tovik_host

#endif
