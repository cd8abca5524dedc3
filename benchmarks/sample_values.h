#ifndef BENCHMARKS_SAMPLE_VALUES_H
#define BENCHMARKS_SAMPLE_VALUES_H

#include "property/property_tovik_iot.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <string>
#include <vector>

namespace bench {

/// One value of each type in the forms in which it is measured.
struct SampleValue
{
    const char* type;
    std::string json; ///< As the service sends it.
    QVariant cached;  ///< As the driver keeps it.
    QByteArray bytes; ///< As the host writes it.
    int data_length;  ///< The host's wish when it reads.
};

/// A value of every type, in the order of docs/configuration.md.
const std::vector<SampleValue>& sampleValues();

/// A configuration that serves \a count items, whose names and ids are of usual lengths and differ
/// at their ends. Its service has no transport: nobody is ever contacted.
/// \param type the type of all of them, or null for all types in turn.
PropertyTovikIot sampleConfiguration(int count, const char* type);

} // namespace bench

#endif
