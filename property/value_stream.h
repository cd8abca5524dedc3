#ifndef PROPERTY_VALUE_STREAM_H
#define PROPERTY_VALUE_STREAM_H

#include "property/checked_value.h"

#include <QDataStream>
#include <QVariant>

/// How deep a list or a map in a stored value may stand in others; the outermost one counts as 0.
const int deepest_value = 32;

/// Reads the cached value of a data item, in Qt's own form.
///
/// Qt's reader takes a variant of any type: it follows lists in lists until the stack is used up,
/// makes room for whatever count it reads, and hands the bytes to the reader of any class that the
/// process knows, some of which end it (images without a GUI, date-times of no time zone). A
/// damaged project file must not do that to the host. So this reads the types of Qt Core that
/// docs/configuration.md names as Qt does, and what is dangerous of them by way of ReadChecked();
/// lists and maps of them element by element, as far as the stream goes and no deeper than
/// \ref deepest_value. A key that comes twice keeps its last value.
///
/// Any other type, what ReadChecked() does not take, and what stands deeper, is an invalid value
/// and gives the stream the status `QDataStream::ReadCorruptData`.
void ReadValue(QDataStream& stream, QVariant* value, ExpressionAllowance* expressions);

#endif
