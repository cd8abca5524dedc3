#ifndef FUZZ_ITEM_VALUES_H
#define FUZZ_ITEM_VALUES_H

#include "cloud/data_item_type.h"

namespace fuzz {

/// The names of the types, in the order of their table.
extern const char* const type_names[11];
const int type_count = 11;

/// The type of that place in type_names.
const DataItemType& typeAt(int index);

/// Checks what must hold of \a value as a value of \a type, on its way to the host and back, and to
/// the service.
/// \param data_length what the host wishes of a text
void checkValue(const DataItemType& type, const QVariant& value, int data_length);

/// Whether \a value is what \a type makes of the service's JSON.
bool isCachedValue(const DataItemType& type, const QVariant& value);

} // namespace fuzz

#endif
