#ifndef BENCHMARKS_CONVERSION_PEERS_H
#define BENCHMARKS_CONVERSION_PEERS_H

#include <QByteArray>
#include <QVariant>

#include <picojson.h>

#include <vector>

namespace bench {

/// The four conversions of one type, written for that type alone.
struct ConversionPeer
{
    const char* type;
    QVariant (*from_json)(const picojson::value& json);
    picojson::value (*to_json)(const QVariant& value);
    QByteArray (*to_host)(const QVariant& value, int data_length);
    QVariant (*from_host)(const QByteArray& bytes);
};

/// A peer of every type, in the order of sampleValues().
const std::vector<ConversionPeer>& conversionPeers();

} // namespace bench

#endif
