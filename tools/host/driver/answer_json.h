#ifndef TOOLS_HOST_DRIVER_ANSWER_JSON_H
#define TOOLS_HOST_DRIVER_ANSWER_JSON_H

#include "tools/host/driver/driver_session.h"
#include "tools/host/value/json_text.h"

namespace tovik_host::driver {

/// Item, type, value, bytes and status of one answer, as members of \a line.
void addAnswer(value::OrderedJson& line, const config::ItemConfig& item, const Answer& answer,
               const std::optional<QString>& value);

} // namespace tovik_host::driver

#endif
