#ifndef TESTS_RELIABILITY_HISTORIES_VALUES_H
#define TESTS_RELIABILITY_HISTORIES_VALUES_H

#include "tests/reliability/histories/reply.h"

#include <QVariant>

/// \file
/// The model's conversions: what the documents say of an item's types, row by row.
namespace values {

/// What is kept of the service's value for an item of \a type, which has \a old.
/// \param taken whether the value is of the item's type
QVariant fromService(const QString& type, const Json& json, const QVariant& old, bool* taken);
/// What a write sends as its value; empty for none.
QString toService(const QString& type, const QVariant& value);
QVariant fromHost(const QString& type, const QByteArray& bytes);
QByteArray toHost(const QString& type, const QVariant& value, int data_length);

} // namespace values

#endif
