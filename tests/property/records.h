#ifndef TESTS_PROPERTY_RECORDS_H
#define TESTS_PROPERTY_RECORDS_H

#include "property/property_tovik_iot.h"

#include <QStringList>

/// Every member in words, one line per scalar, with the types of variants. Unlike the records' own
/// comparison this tells an `int` 1 from a `bool` true; a null text and an empty one are the same.
QStringList describe(const PropertyTovikIotDataItem& item);
QStringList describe(const PropertyTovikIotGroup& group);
QStringList describe(const PropertyTovikIot& root);

/// Records in which no member has its default value; \a number tells them apart.
PropertyTovikIotDataItem filledItem(int number = 1);
PropertyTovikIotGroup filledGroup(int number = 1, int items = 2);
PropertyTovikIot filledRoot(int groups = 2, int items = 2);

/// An item with \a value and defaults.
PropertyTovikIotDataItem itemWith(const QVariant& value);

#endif
