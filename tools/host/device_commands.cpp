#include "tools/host/device_commands.h"

#include "tools/host/driver/answer_json.h"
#include "tools/host/driver/device_host.h"
#include "tools/host/driver/device_place.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/usage_error.h"

namespace tovik_host {

namespace {

void printRead(driver::DevicePlace& place, const config::ItemConfig& item,
               const driver::DeviceAnswer& answer, const QString& problem, bool quiet)
{
    if (!problem.isEmpty()) {
        place.complain(item.name, problem);
        return;
    }
    const QString text = value::decodeValue(*item.type, answer.answer.bytes).value();
    place.out.line(quiet ? text : QStringLiteral("%1 = %2").arg(item.name, text));
}

void printReadJson(driver::DevicePlace& place, const config::ItemConfig& item,
                   const driver::DeviceAnswer& answer, const QString& problem)
{
    value::OrderedJson line;
    driver::addAnswer(line, item, answer.answer,
                      problem.isEmpty() ? value::decodeValue(*item.type, answer.answer.bytes)
                                        : std::nullopt);
    if (!problem.isEmpty())
        line["problem"] = problem.toStdString();
    place.out.line(value::jsonLine(line));
}

} // namespace

int runDeviceRead(const config::CommonOptions& common, const config::ReadOptions& options)
{
    driver::DevicePlace place(common, options.items);
    driver::DeviceHost host(place.plugin, place.config, place.unix_signals);
    const QString link_problem = host.open();
    if (!link_problem.isEmpty()) {
        place.complainOfLink(link_problem);
        return terminal::exitRefused;
    }
    bool complete = true;
    for (const config::ItemConfig& item : qAsConst(place.config.items)) {
        const driver::DeviceAnswer answer = host.read(item);
        const QString problem = place.problemOf(item, answer);
        complete = complete && problem.isEmpty();
        if (common.json)
            printReadJson(place, item, answer, problem);
        else
            printRead(place, item, answer, problem, options.quiet);
        if (place.unix_signals.endRequested())
            return terminal::exitRefused;
    }
    return complete ? terminal::exitDone : terminal::exitRefused;
}

int runDeviceWrite(const config::CommonOptions& common, const config::WriteOptions& options)
{
    driver::DevicePlace place(common, {options.item});
    const config::ItemConfig& item = place.config.items.first();
    const value::EncodedValue encoded = value::encodeValue(*item.type, options.value, item.length);
    if (!encoded.ok())
        throw terminal::UsageError(QStringLiteral("%1: %2").arg(item.name, encoded.problem));
    driver::DeviceHost host(place.plugin, place.config, place.unix_signals);
    const QString link_problem = host.open();
    if (!link_problem.isEmpty()) {
        place.complainOfLink(link_problem);
        return terminal::exitRefused;
    }
    const QString problem = place.failureOf(host.write(item, encoded.bytes));
    if (!problem.isEmpty()) {
        place.complain(item.name, QStringLiteral("not written: ") + problem);
        return terminal::exitRefused;
    }
    place.out.line(
        QStringLiteral("%1 = %2  written")
            .arg(item.name, value::decodeValue(*item.type, encoded.bytes).value_or(QString())));
    return terminal::exitDone;
}

} // namespace tovik_host
