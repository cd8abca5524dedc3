// What a configuration occupies, beside the characters of its texts. Prints rows (README.md).

#include "benchmarks/sample_values.h"

#include <malloc.h>

#include <cstdio>
#include <memory>

namespace {

const int few_items = 10;
const int many_items = 10000;
const double target = 3.0;

std::size_t allocated()
{
    return mallinfo2().uordblks;
}

QByteArray stored(const PropertyTovikIot& configuration)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << configuration;
    return bytes;
}

std::size_t bytesOf(const QString& text)
{
    return std::size_t(text.size()) * sizeof(QChar);
}

/// The characters of all texts in a configuration, in the two bytes each that Qt keeps.
std::size_t textsOf(const PropertyTovikIot& configuration)
{
    std::size_t bytes = bytesOf(configuration.host) + bytesOf(configuration.project);
    for (const PropertyTovikIotDataItem& item : configuration.dataitems) {
        bytes += bytesOf(item.name) + bytesOf(item.dataitem_id) + bytesOf(item.type);
        if (item.value.type() == QVariant::String)
            bytes += bytesOf(item.value.toString());
    }
    return bytes;
}

void printRow(int count, const char* target_member, const char* separator)
{
    const QByteArray bytes = stored(bench::sampleConfiguration(count, nullptr));
    const std::size_t before = allocated();
    const std::unique_ptr<PropertyTovikIot> configuration(new PropertyTovikIot);
    QDataStream stream(bytes);
    stream >> *configuration;
    const std::size_t after = allocated();
    std::printf("  {\"name\": \"configuration of %d items, as read\", \"ours\": %.1f, "
                "\"peer\": %.1f, \"unit\": \"KiB\", \"size\": %d%s}%s\n",
                count, double(after - before) / 1024, double(textsOf(*configuration)) / 1024, count,
                target_member, separator);
}

} // namespace

int main()
{
    // What Qt allocates once, on the first use, is not the configuration's.
    stored(bench::sampleConfiguration(few_items, nullptr));
    char target_member[40];
    std::snprintf(target_member, sizeof target_member, ", \"target\": %.1f", target);
    std::puts("[");
    printRow(100, "", ",");
    printRow(1000, "", ",");
    printRow(many_items, target_member, "");
    std::puts("]");
}
