#include "tools/host/check/check.h"
#include "tools/host/commands.h"
#include "tools/host/driver/driver_session.h"
#include "tools/host/driver/service_values.h"
#include "tools/host/driver/setup.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/json_text.h"

#include <CLI/CLI.hpp>

namespace tovik_host {

namespace {

const char read_text[] = R"(Reads items once, as the service or the device has them.
Of a service it takes a value once the driver tells that the service has delivered it, so
it is never one from the driver's empty cache. An error code of the service ends it at
once; a service that cannot be reached is tried again until --timeout.
A device is asked once (and --retries times more); --timeout is for opening the link.

Example:
  tovik-host read Pump.Speed Tank.Level --config plant.json
With a device:
  tovik-host read 4x1 4x2=16Bit-INT --library modbus_drv \
      --link serial:/dev/ttyUSB0,19200,8E1 --station 3)";

/// The item that ends the driver's cycle with an error: of those without a value the first one.
/// Empty: none does.
QString endOfCycle(const driver::FirstValues& first)
{
    if (!first.was_connected || first.all_read || !value::isServiceError(first.status))
        return QString();
    for (const driver::FirstValue& value : first.values) {
        if (!value.arrived)
            return value.item.name;
    }
    return QString();
}

/// Why there is no value; empty when there is one.
QString problemOf(const driver::FirstValue& value, const driver::FirstValues& first)
{
    if (value.arrived && value::decodeValue(*value.item.type, value.answer.bytes))
        return QString();
    const QString type = QString::fromLatin1(value.item.type->name);
    if (value.arrived)
        return u"the driver's bytes [%1] are no %2"_s.arg(value::hexText(value.answer.bytes), type);
    if (first.waited == terminal::Waited::interrupted)
        return u"interrupted"_s;
    const QString status = value::statusTextWithCode(first.status);
    const QString end = endOfCycle(first);
    if (!end.isEmpty() && end != value.item.name)
        return u"not reached: %1 ends the cycle with %2"_s.arg(end, status);
    if (first.status != 0) {
        return u"no value: "_s + status +
               (end.isEmpty()
                    ? QString()
                    : u"; does the service have an item with the id \"%1\"?"_s.arg(value.item.id));
    }
    if (first.all_read && value.answer.arrived) {
        return u"the service's value is no %1: compare the item's type with the service's"_s.arg(
            type);
    }
    return u"no value came in time, and the driver reports no error; --verbose shows its log"_s;
}

struct Read
{
    config::CommonOptions common;
    QStringList items;

    int run() const;
    int runOfService() const;
    int runOfDevice() const;
    void print(terminal::Context& context, const config::ItemConfig& item,
               const driver::Answer& answer, const QString& problem) const;
};

/// \param problem why there is no value; empty if there is one
void Read::print(terminal::Context& context, const config::ItemConfig& item,
                 const driver::Answer& answer, const QString& problem) const
{
    const std::optional<QString> text =
        problem.isEmpty() ? config::valueOf(item, answer.bytes) : std::nullopt;
    if (common.json) {
        value::OrderedJson line = value::jsonReport(nullptr, QDateTime::currentDateTime());
        driver::addAnswer(line, item, answer, text);
        if (!text)
            line["problem"] = problem;
        context.out.line(value::jsonLine(line));
    } else if (text) {
        context.out.foreignLine(common.quiet ? *text : u"%1 = %2"_s.arg(item.name, *text));
    } else {
        context.complain(item.name, problem);
    }
}

int Read::run() const
{
    return driver::meansDevice(common) ? runOfDevice() : runOfService();
}

int Read::runOfService() const
{
    terminal::Context context;
    const driver::ServiceSetup setup(common, context);
    const driver::FirstValues first =
        driver::fetchFirstValues(context, setup, setup.chosen(items), int(common.timeout * 1000));
    bool complete = true;
    for (const driver::FirstValue& value : first.values) {
        const QString problem = problemOf(value, first);
        complete = complete && problem.isEmpty();
        // Bytes that are not the service's would only mislead.
        const driver::Answer none = {true, QByteArray(), first.status};
        print(context, value.item, value.arrived ? value.answer : none, problem);
    }
    if (!complete && !first.was_connected)
        explainNoConnection(context, setup, common, first.status);
    else if (!complete && first.waited != terminal::Waited::interrupted)
        check::advise(context, QString(), check::checkCommand(common));
    return context.codeAfterWriting(complete ? terminal::exitDone : terminal::exitRefused);
}

int Read::runOfDevice() const
{
    terminal::Context context;
    driver::DeviceSetup setup(common, items, context);
    if (!setup.open())
        return terminal::exitRefused;
    bool complete = true;
    for (const config::ItemConfig& item : qAsConst(setup.config.items)) {
        const driver::Answer answer = setup.host.read(item);
        const QString problem = setup.problemOf(item, answer);
        complete = complete && problem.isEmpty();
        print(context, item, answer, problem);
        if (context.unix_signals.endRequested())
            return terminal::exitRefused;
    }
    return context.codeAfterWriting(complete ? terminal::exitDone : terminal::exitRefused);
}

} // namespace

void addRead(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Read>();
    CLI::App* const command = addCommand(
        app, run, "read", "Read items once, as the service or the device has them", read_text,
        [options] { return options->run(); }, options->common);
    addTexts(command, "ITEM", options->items,
             "Names of items, or patterns of them with * ? []; of a device without --config: "
             "addresses")
        ->required();
    addCommon(command, options->common);
    addWays(command, options->common);
    addTimeout(command, options->common.timeout, "Longest wait for the values, or for the link");
    command->add_flag("-j,--json", options->common.json, "One line of JSON for every item");
    command->add_flag("-q,--quiet", options->common.quiet, "The values only");
}

} // namespace tovik_host
