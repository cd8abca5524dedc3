#include "tools/host/command_line.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/output.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    tovik_host::terminal::reserveStandardDescriptors();
    const tovik_host::ParsedCommandLine parsed = tovik_host::parseCommandLine(argc, argv);
    if (!parsed.run)
        return parsed.exit_code;
    const QCoreApplication application(argc, argv);
    try {
        return parsed.run();
    } catch (const tovik_host::terminal::UsageError& error) {
        std::fprintf(stderr, "tovik-host: %s\n", error.what());
        return tovik_host::terminal::exitUsage;
    }
}
