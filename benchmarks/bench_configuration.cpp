// Reading a stored configuration, beside Qt's own stream operators on plain structures.

#include "benchmarks/comparison.h"
#include "benchmarks/plain_configuration.h"
#include "benchmarks/sample_values.h"

namespace {

const double target = 1.2;

QByteArray stored(const PropertyTovikIot& configuration)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << configuration;
    return bytes;
}

template <typename Configuration>
Configuration readFrom(const QByteArray& bytes)
{
    Configuration configuration;
    QDataStream stream(bytes);
    stream >> configuration;
    return configuration;
}

bool isSame(const PropertyTovikIot& ours, const bench::PlainConfiguration& peer)
{
    bool same = ours.host == peer.host && ours.dataitems.size() == peer.dataitems.size();
    for (int i = 0; same && i < ours.dataitems.size(); ++i) {
        const PropertyTovikIotDataItem& item = ours.dataitems.at(i);
        const bench::PlainItem& plain = peer.dataitems.at(i);
        same = item.name == plain.name && item.dataitem_id == plain.dataitem_id &&
               item.type == plain.type && item.value == plain.value &&
               item.length == plain.length && item.marked == plain.marked;
    }
    return same;
}

void compareReading(int count, double most)
{
    const bench::Row row = {"reading " + std::to_string(count) + " items", most, double(count)};
    const QByteArray bytes = stored(bench::sampleConfiguration(count, nullptr));
    const auto ours = [bytes] { return readFrom<PropertyTovikIot>(bytes); };
    const auto peer = [bytes] { return readFrom<bench::PlainConfiguration>(bytes); };
    bench::requireEqual(isSame(ours(), peer()), row);
    bench::measure(row, "ours", ours);
    bench::measure(row, "peer", peer);
}

} // namespace

int main(int argc, char** argv)
{
    compareReading(100, 0);
    compareReading(1000, 0);
    compareReading(10000, target);
    return bench::run(argc, argv);
}
