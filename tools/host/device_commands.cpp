#include "tools/host/device_commands.h"

#include "tools/host/driver/answer_json.h"
#include "tools/host/driver/device_host.h"
#include "tools/host/driver/device_place.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/usage_error.h"

namespace tovik_host {

namespace {

void printRead(DevicePlace& place, const ItemConfig& item, const DeviceAnswer& answer,
               const QString& problem, bool quiet)
{
    if (!problem.isEmpty()) {
        place.complain(item.name, problem);
        return;
    }
    const QString text = decodeValue(*item.type, answer.answer.bytes).value();
    place.out.line(quiet ? text : QStringLiteral("%1 = %2").arg(item.name, text));
}

void printReadJson(DevicePlace& place, const ItemConfig& item, const DeviceAnswer& answer,
                   const QString& problem)
{
    OrderedJson line;
    addAnswer(line, item, answer.answer,
              problem.isEmpty() ? decodeValue(*item.type, answer.answer.bytes) : std::nullopt);
    if (!problem.isEmpty())
        line["problem"] = problem.toStdString();
    place.out.line(jsonLine(line));
}

} // namespace

int runDeviceRead(const CommonOptions& common, const ReadOptions& options)
{
    DevicePlace place(common, options.items);
    DeviceHost host(place.plugin, place.config, place.unix_signals);
    const QString link_problem = host.open();
    if (!link_problem.isEmpty()) {
        place.complainOfLink(link_problem);
        return exitRefused;
    }
    bool complete = true;
    for (const ItemConfig& item : qAsConst(place.config.items)) {
        const DeviceAnswer answer = host.read(item);
        const QString problem = place.problemOf(item, answer);
        complete = complete && problem.isEmpty();
        if (common.json)
            printReadJson(place, item, answer, problem);
        else
            printRead(place, item, answer, problem, options.quiet);
        if (place.unix_signals.endRequested())
            return exitRefused;
    }
    return complete ? exitDone : exitRefused;
}

int runDeviceWrite(const CommonOptions& common, const WriteOptions& options)
{
    DevicePlace place(common, {options.item});
    const ItemConfig& item = place.config.items.first();
    const EncodedValue encoded = encodeValue(*item.type, options.value, item.length);
    if (!encoded.ok())
        throw UsageError(QStringLiteral("%1: %2").arg(item.name, encoded.problem));
    DeviceHost host(place.plugin, place.config, place.unix_signals);
    const QString link_problem = host.open();
    if (!link_problem.isEmpty()) {
        place.complainOfLink(link_problem);
        return exitRefused;
    }
    const QString problem = place.failureOf(host.write(item, encoded.bytes));
    if (!problem.isEmpty()) {
        place.complain(item.name, QStringLiteral("not written: ") + problem);
        return exitRefused;
    }
    place.out.line(QStringLiteral("%1 = %2  written")
                       .arg(item.name, decodeValue(*item.type, encoded.bytes).value_or(QString())));
    return exitDone;
}

} // namespace tovik_host
