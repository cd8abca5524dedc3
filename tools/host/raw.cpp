#include "tools/host/commands.h"
#include "tools/host/driver/setup.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/host_value.h"
#include "tools/host/value/json_text.h"
#include "tools/host/value/status_text.h"

#include <CLI/CLI.hpp>

namespace tovik_host {

namespace {

const char raw_text[] =
    R"(Sends bytes to the device as they are (transparent mode) and prints the answer as
hexadecimal digits. The frame must be complete, with its checksum.
The answer is complete once no byte has come for a number of polls; all of it must fit
into --response-timeout, 1000 ms by default. The library's own default of 10 ms never
suffices: over TCP 12 polls of 1 ms are needed at least, over a serial line 52 of 1.5
characters each. A poll counts for its shortest time, so the wait may be twice as long.

Example:
  tovik-host raw 01 03 00 00 00 0A C5 CD --library modbus_drv \
      --link serial:/dev/ttyUSB0,9600,8N1 --response-timeout 2000)";

QString subject()
{
    return u"raw"_s;
}

void printJson(terminal::Context& context, const QByteArray& request, const driver::Answer& answer,
               const QString& problem)
{
    value::OrderedJson line = value::jsonReport(nullptr, QDateTime::currentDateTime());
    line["request"] = request.toHex().toStdString();
    line["response"] = answer.bytes.toHex().toStdString();
    driver::addStatus(line, answer);
    if (!problem.isEmpty())
        line["problem"] = problem;
    context.out.line(value::jsonLine(line));
}

/// Why there is no answer; what a silent device means is different here from a read.
QString problemOf(const driver::DeviceSetup& setup, const driver::Answer& answer)
{
    const bool silent = answer.arrived && answer.status == result_code::no_answer_in_time;
    if (!silent || !answer.link_problem.isEmpty() || setup.context.unix_signals.endRequested())
        return setup.failureOf(answer);
    return u"no complete answer within the budget of %1 ms; is the frame complete, with its "
           "checksum? A slow device needs a longer --response-timeout"_s.arg(
               setup.config.settings.response_timeout);
}

struct Raw
{
    config::CommonOptions common;
    QStringList bytes; ///< Hexadecimal digits.
    bool has_timeout = false;
    bool force = false;

    int run() const;
};

int Raw::run() const
{
    if (!driver::isForDevice(common)) {
        throw terminal::UsageError(
            u"raw is for a device on a link, and there is none: add --link tcp:HOST:PORT or --link "
            "serial:DEVICE"_s);
    }
    const QByteArray request = value::parseHexBytes(bytes);
    config::CommonOptions asked = common;
    if (has_timeout && !asked.link.response_timeout) {
        asked.link.response_timeout =
            std::min(int(asked.timeout * 1000), config::limits::response_timeout);
    }
    asked.timeout = std::max(asked.timeout, 10.0);
    terminal::Context context;
    driver::DeviceSetup setup(asked, {}, context);
    if (!setup.open())
        return terminal::exitRefused;
    if (!force && !setup.host.supportsRaw()) {
        context.complain(
            subject(),
            u"the driver says that it does not support the transparent mode; --force tries all the "
            "same"_s);
        return terminal::exitRefused;
    }
    const driver::Answer answer = setup.host.sendRaw(request);
    const QString problem = problemOf(setup, answer);
    if (common.json)
        printJson(context, request, answer, problem);
    else if (problem.isEmpty())
        context.out.line(value::hexText(answer.bytes));
    else
        context.complain(subject(), problem);
    return context.codeAfterWriting(problem.isEmpty() ? terminal::exitDone : terminal::exitRefused);
}

} // namespace

void addRaw(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Raw>();
    CLI::App* const command = addCommand(
        app, run, "raw", "Send bytes to a device as they are", raw_text,
        [options] { return options->run(); }, options->common);
    addTexts(command, "HEX", options->bytes, "Bytes, such as 01 03 00 0A or 0103000A")->required();
    addCommon(command, options->common);
    addTimeout(command, options->common.timeout,
               "Longest wait for the answer, as --response-timeout; the link has 10 s at least")
        ->each([options](const std::string&) { options->has_timeout = true; });
    command->add_flag("-j,--json", options->common.json, "One line of JSON");
    command->add_flag("--force", options->force,
                      "Even if the driver says that it does not support it");
    addLink(command, options->common.link);
}

} // namespace tovik_host
