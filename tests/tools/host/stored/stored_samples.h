#ifndef TESTS_TOOLS_HOST_STORED_STORED_SAMPLES_H
#define TESTS_TOOLS_HOST_STORED_STORED_SAMPLES_H

#include "property/property_tovik_iot.h"
#include "tools/host/stored/json.h"
#include "tools/host/stored/stream.h"

#include <QByteArray>
#include <QVariant>

/// The record as `QDataStream` and the library's operators write it.
QByteArray writtenByQt(const PropertyTovikIot& record, const tovik_host::stored::Format& format);
/// The record as they read it; only for bytes that are good.
PropertyTovikIot readByQt(const QByteArray& bytes, const tovik_host::stored::Format& format);

/// A record with one served item of each value.
PropertyTovikIot recordWith(const QList<QVariant>& values);
/// Those, and values of other types that can be read, null ones and extreme ones among them.
QList<QVariant> allValues();
/// Values as the driver keeps them.
QList<QVariant> driverValues();
/// Texts that are hard to keep: null, empty, zeros, control characters, half a character.
QStringList hardTexts();

/// A column `format` with all versions of Qt 4 and 5, forms and orders, and both precisions where
/// it matters.
void addStoredFormatRows();
/// The same for one version of each layout.
void addStoredLayoutRows();

/// The text as a file that is called "file".
tovik_host::config::JsonFile jsonFile(const QByteArray& text);
/// The record as convert writes it, without a format.
QByteArray jsonTextOf(const PropertyTovikIot& record, int known = tovik_host::stored::all_known);

Q_DECLARE_METATYPE(tovik_host::stored::Format)

#endif
