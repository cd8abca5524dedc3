#include "tools/host/commands.h"
#include "tools/host/terminal/context.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>

using namespace tovik_host;

namespace {

const char program_text[] = "Loads a driver plug-in as a host does, and shows it work.";

const char exit_text[] =
    R"(With --config it runs a cloud driver, with --link the driver of a device on a serial line or
a TCP connection.

Settings: ~/.config/tovik/tovik-host.json holds options that repeat, such as
  {"config": "/home/me/plant.json", "timeout": 5}

Exit codes: 0 done; 1 the service, the device or the item says no, or the time ran out;
2 usage, configuration or library is wrong.)";

} // namespace

int main(int argc, char** argv)
{
    terminal::reserveStandardDescriptors();
    CLI::App app(program_text, "tovik-host");
    app.footer(exit_text);
    app.require_subcommand(1);
    app.set_version_flag("--version", "tovik-host " TOVIK_HOST_VERSION);
    CLI::App* const help = app.add_subcommand("help", "Explain the program or a command");
    std::string explained;
    help->add_option("COMMAND", explained, "Name of a command");
    Run run;
    for (const auto add : {addWatch, addRead, addWrite, addRaw, addCheck, addCatalogue,
                           addConfigure, addDiff, addConvert, addShow})
        add(app, run);
    try {
        if (const auto code = parseLine(app, std::vector<std::string>(argv + 1, argv + argc)))
            return *code;
        const QCoreApplication application(argc, argv);
        return run();
    } catch (const terminal::UsageError& error) {
        terminal::Streams streams;
        QStringList lines = error.message().split(u'\n');
        streams.complain(lines.takeFirst());
        for (const QString& line : qAsConst(lines))
            streams.err.line(terminal::printable(line));
        return terminal::exitUsage;
    }
}
