#ifndef TESTS_RELIABILITY_STRESS_STAMPED_VALUE_H
#define TESTS_RELIABILITY_STRESS_STAMPED_VALUE_H

#include <QByteArray>
#include <QVariant>

#include <nlohmann/json.hpp>

/// \file
/// Values that carry a stamp and show when they have been torn.
///
/// A value is made from a number, its stamp, in such a way that every byte of it follows from the
/// stamp. Whoever reads it takes the stamp out, makes the value again and compares: half of one
/// value and half of another never fit.
namespace stamped {

/// The data-item types that are used. Texts and HEX items live as texts in the driver's cache.
enum class Kind
{
    text,
    hex,
    number,
    real,
};

const int kind_count = 4;
/// No value of this kind can be what was read.
const qint64 torn = -1;

const char* typeName(Kind kind);
/// The part of \a sequence that fits into a value of \a kind.
qint64 stampOf(Kind kind, quint32 sequence);

/// What a host writes, what a service sends, and what a configuration holds before either.
QByteArray hostBytes(Kind kind, qint64 stamp);
nlohmann::json json(Kind kind, qint64 stamp);
QVariant variant(Kind kind, qint64 stamp);

/// The stamp of what a host has read, or a service has received; torn when it is no such value.
qint64 stampOfHostBytes(Kind kind, const QByteArray& bytes);
qint64 stampOfJson(Kind kind, const nlohmann::json& json);

} // namespace stamped

#endif
