#include "tools/host/commands.h"
#include "tools/host/driver/service_values.h"
#include "tools/host/driver/setup.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/json_text.h"

#include <CLI/CLI.hpp>

namespace tovik_host {

namespace {

const char write_text[] =
    R"(Writes one value, checked against the limits of the item's type, and waits until the
driver has sent it. --confirm starts another driver, which knows nothing of the write,
and waits until that one hears the value from the service. A device itself says whether
it has taken the value.
A value that begins with a minus sign and is no plain number goes after "--".

Example:
  tovik-host write Pump.Speed 1200 --config plant.json --confirm 5
With a device:
  tovik-host write 4x1 1200 --library modbus_drv --link tcp:192.168.1.5:502)";

struct Write
{
    config::CommonOptions common;
    QString item;
    QString value;
    double confirm = 0; ///< Seconds; 0: is not confirmed.

    int run() const;
    int runOfService() const;
    int runOfDevice() const;
    int report(terminal::Context& context, const config::ItemConfig& to, const QByteArray& bytes,
               const QString& done, const QString& problem) const;
};

/// The value's bytes. Throws UsageError when it is none of the item's type.
QByteArray encoded(const config::ItemConfig& item, const QString& value)
{
    try {
        return config::bytesOf(item, value);
    } catch (const terminal::UsageError& error) {
        throw terminal::UsageError(u"%1: %2"_s.arg(item.name, error.message()));
    }
}

config::ItemConfig onlyOne(const QVector<config::ItemConfig>& items, const QString& named)
{
    if (items.size() == 1)
        return items.first();
    throw terminal::UsageError(
        u"\"%1\" is %2 items; one is written at a time"_s.arg(named).arg(items.size()));
}

/// \param done what has become of the value; empty: it was not written
/// \param problem why not, or why it is not known; empty: it was
int Write::report(terminal::Context& context, const config::ItemConfig& to, const QByteArray& bytes,
                  const QString& done, const QString& problem) const
{
    const std::optional<QString> text = config::valueOf(to, bytes);
    if (common.json) {
        value::OrderedJson line = value::jsonReport(nullptr, QDateTime::currentDateTime());
        line["item"] = to.name;
        line["type"] = to.type->name;
        line["value"] = driver::jsonOf(to, text);
        line["bytes"] = bytes.toHex().toStdString();
        line["done"] = problem.isEmpty() ? std::make_optional(done) : std::nullopt;
        if (!problem.isEmpty())
            line["problem"] = problem;
        context.out.line(value::jsonLine(line));
    } else if (problem.isEmpty()) {
        context.out.foreignLine(u"%1 = %2  %3"_s.arg(to.name, text.value_or(QString()), done));
    } else {
        context.complain(to.name, problem);
    }
    return context.codeAfterWriting(problem.isEmpty() ? terminal::exitDone : terminal::exitRefused);
}

int Write::run() const
{
    return driver::meansDevice(common) ? runOfDevice() : runOfService();
}

int Write::runOfService() const
{
    terminal::Context context;
    const driver::ServiceSetup setup(common, context);
    const config::ItemConfig to = onlyOne(setup.chosen({item}), item);
    const QByteArray bytes = encoded(to, value);
    const driver::SentValue sent =
        driver::sendValue(context, setup, to, bytes, int(common.timeout * 1000));
    QString problem = sent.problem;
    if (problem.isEmpty() && confirm > 0)
        problem = driver::confirmValue(context, setup, to, bytes, int(confirm * 1000));
    const int code = report(context, to, bytes, confirm > 0 ? u"confirmed"_s : u"sent"_s, problem);
    if (!sent.was_connected)
        explainNoConnection(context, setup, common, sent.status);
    return code;
}

int Write::runOfDevice() const
{
    terminal::Context context;
    driver::DeviceSetup setup(common, {item}, context);
    const config::ItemConfig to = onlyOne(setup.config.items, item);
    const QByteArray bytes = encoded(to, value);
    if (!setup.open())
        return terminal::exitRefused;
    const QString failure = setup.failureOf(setup.host.write(to, bytes));
    return report(context, to, bytes, u"written"_s,
                  failure.isEmpty() ? QString() : u"not written: "_s + failure);
}

} // namespace

void addWrite(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Write>();
    CLI::App* const command = addCommand(
        app, run, "write", "Write one value to an item", write_text,
        [options] { return options->run(); }, options->common);
    addText(command, "ITEM", options->item,
            "Name of the item; of a device without --config: address")
        ->required();
    addText(command, "VALUE", options->value, "New value")->required();
    addCommon(command, options->common);
    addWays(command, options->common);
    addTimeout(command, options->common.timeout, "Longest wait until it is sent, or for the link");
    markOfService(addSeconds(command, "--confirm", options->confirm,
                             "Wait until the service shows the value"));
    command->add_flag("-j,--json", options->common.json, "One line of JSON");
}

} // namespace tovik_host
