#include "tools/host/commands.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/output.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>

#include <cstdio>

using namespace tovik_host;

namespace {

const char program_text[] = "Loads a driver plug-in as a host does, and shows it work.";

const char exit_text[] =
    "With --config it runs a cloud driver, with --link the driver of a device on a serial line or\n"
    "a TCP connection.\n"
    "\n"
    "Exit codes: 0 done; 1 the service, the device or the item says no, or the time ran out;\n"
    "2 usage, configuration or library is wrong.";

/// The command line without the program, last word first, as the library wants it.
std::vector<std::string> wordsOf(int argc, char** argv)
{
    std::vector<std::string> words;
    for (int i = argc - 1; i > 0; --i)
        words.push_back(keepBrackets(argv[i]));
    return words;
}

} // namespace

int main(int argc, char** argv)
{
    terminal::reserveStandardDescriptors();
    CLI::App app(program_text, "tovik-host");
    app.footer(exit_text);
    app.require_subcommand(1);
    app.set_version_flag("--version", "tovik-host " TOVIK_HOST_VERSION);
    Run run;
    for (const auto add : {addWatch, addRead, addWrite, addRaw, addCheck, addCatalogue,
                           addConfigure, addDiff, addConvert, addShow})
        add(app, run);
    try {
        app.parse(wordsOf(argc, argv));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? terminal::exitDone : terminal::exitUsage;
    }
    const QCoreApplication application(argc, argv);
    try {
        return run();
    } catch (const terminal::UsageError& error) {
        std::fprintf(stderr, "tovik-host: %s\n", error.what());
        return terminal::exitUsage;
    }
}
