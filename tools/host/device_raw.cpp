#include "tools/host/device_commands.h"
#include "tools/host/driver/device_host.h"
#include "tools/host/driver/device_place.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/usage_error.h"
#include "tools/host/value/hex_bytes.h"
#include "tools/host/value/json_text.h"
#include "tools/host/value/status_text.h"

namespace tovik_host {

namespace {

QString subject()
{
    return QStringLiteral("raw");
}

void printJson(driver::DevicePlace& place, const QByteArray& request, const driver::Answer& answer,
               const QString& problem)
{
    value::OrderedJson line;
    line["request"] = request.toHex().toStdString();
    line["response"] = answer.bytes.toHex().toStdString();
    line["status"] = answer.arrived
                         ? value::OrderedJson(value::statusCode(answer.status).toStdString())
                         : value::OrderedJson(nullptr);
    line["status_text"] = answer.arrived
                              ? value::statusText(answer.status, answer.status_of).toStdString()
                              : std::string("no answer");
    if (!problem.isEmpty())
        line["problem"] = problem.toStdString();
    place.out.line(value::jsonLine(line));
}

/// Why there is no answer; what a silent device means is different here from a read.
QString problemOf(const driver::DevicePlace& place, const driver::DeviceAnswer& answer)
{
    const bool silent =
        answer.answer.arrived && answer.answer.status == result_code::no_answer_in_time;
    if (!silent || !answer.link_problem.isEmpty() || place.unix_signals.endRequested())
        return place.failureOf(answer);
    return QStringLiteral("no complete answer within the budget of %1 ms; is the frame complete, "
                          "with its checksum? A slow device needs a longer --response-timeout")
        .arg(place.config.settings.response_timeout);
}

} // namespace

int runDeviceRaw(const config::CommonOptions& common, const config::RawOptions& options)
{
    const value::HexBytes request = value::parseHexBytes(options.bytes);
    if (!request.problem.isEmpty())
        throw terminal::UsageError(request.problem);
    driver::DevicePlace place(common, {});
    driver::DeviceHost host(place.plugin, place.config, place.unix_signals);
    const QString link_problem = host.open();
    if (!link_problem.isEmpty()) {
        place.complainOfLink(link_problem);
        return terminal::exitRefused;
    }
    if (!options.force && !host.supportsRaw()) {
        place.complain(subject(), QStringLiteral("the driver says that it does not support the "
                                                 "transparent mode; --force tries all the same"));
        return terminal::exitRefused;
    }
    const driver::DeviceAnswer answer = host.sendRaw(request.bytes);
    const QString problem = problemOf(place, answer);
    if (common.json)
        printJson(place, request.bytes, answer.answer, problem);
    else if (problem.isEmpty())
        place.out.line(value::hexText(answer.answer.bytes));
    else
        place.complain(subject(), problem);
    return problem.isEmpty() ? terminal::exitDone : terminal::exitRefused;
}

} // namespace tovik_host
