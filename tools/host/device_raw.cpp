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

void printJson(DevicePlace& place, const QByteArray& request, const Answer& answer,
               const QString& problem)
{
    OrderedJson line;
    line["request"] = request.toHex().toStdString();
    line["response"] = answer.bytes.toHex().toStdString();
    line["status"] = answer.arrived ? OrderedJson(statusCode(answer.status).toStdString())
                                    : OrderedJson(nullptr);
    line["status_text"] = answer.arrived ? statusText(answer.status, answer.status_of).toStdString()
                                         : std::string("no answer");
    if (!problem.isEmpty())
        line["problem"] = problem.toStdString();
    place.out.line(jsonLine(line));
}

/// Why there is no answer; what a silent device means is different here from a read.
QString problemOf(const DevicePlace& place, const DeviceAnswer& answer)
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

int runDeviceRaw(const CommonOptions& common, const RawOptions& options)
{
    const HexBytes request = parseHexBytes(options.bytes);
    if (!request.problem.isEmpty())
        throw UsageError(request.problem);
    DevicePlace place(common, {});
    DeviceHost host(place.plugin, place.config, place.unix_signals);
    const QString link_problem = host.open();
    if (!link_problem.isEmpty()) {
        place.complainOfLink(link_problem);
        return exitRefused;
    }
    if (!options.force && !host.supportsRaw()) {
        place.complain(subject(), QStringLiteral("the driver says that it does not support the "
                                                 "transparent mode; --force tries all the same"));
        return exitRefused;
    }
    const DeviceAnswer answer = host.sendRaw(request.bytes);
    const QString problem = problemOf(place, answer);
    if (common.json)
        printJson(place, request.bytes, answer.answer, problem);
    else if (problem.isEmpty())
        place.out.line(hexText(answer.answer.bytes));
    else
        place.complain(subject(), problem);
    return problem.isEmpty() ? exitDone : exitRefused;
}

} // namespace tovik_host
