// The conversions of each type, beside code that is written for that type alone.

#include "benchmarks/comparison.h"
#include "benchmarks/conversion_peers.h"
#include "benchmarks/sample_values.h"
#include "cloud/data_item_type.h"

namespace {

const double target = 1.2;

picojson::value parsed(const std::string& json)
{
    picojson::value value;
    picojson::parse(value, json);
    return value;
}

/// Registers the pair of one conversion with the arguments that both halves get.
template <typename Conversion, typename... Arguments>
void compareConversion(const char* type, const char* what, Conversion ours, Conversion peer,
                       Arguments... arguments)
{
    bench::compare(
        {std::string(type) + ' ' + what, target, 0}, [=] { return ours(arguments...); },
        [=] { return peer(arguments...); });
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<bench::SampleValue>& values = bench::sampleValues();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const bench::SampleValue& value = values[i];
        const bench::ConversionPeer& peer = bench::conversionPeers().at(i);
        const DataItemType* type = findDataItemType(QString::fromLatin1(value.type));
        bench::requireEqual(type && qstrcmp(peer.type, value.type) == 0, {value.type, 0, 0});
        compareConversion(value.type, "from_json", type->from_json, peer.from_json,
                          parsed(value.json));
        compareConversion(value.type, "to_json", type->to_json, peer.to_json,
                          type->from_host(value.bytes));
        compareConversion(value.type, "to_host", type->to_host, peer.to_host, value.cached,
                          value.data_length);
        compareConversion(value.type, "from_host", type->from_host, peer.from_host, value.bytes);
    }
    return bench::run(argc, argv);
}
