#include "tools/host/service/catalogue.h"
#include "tools/host/commands.h"
#include "tools/host/service/catalogue_fetch.h"
#include "tools/host/terminal/exit_code.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

namespace tovik_host {

namespace {

const char catalogue_text[] =
    R"(Logs in with the driver's own client and prints what the service offers to the account:
a tree on a terminal, a table elsewhere. A configuration can be made from the JSON form,
and two of them can be compared.
The password comes from --password-file, from the variable that --password-env names,
from the configuration, or from the variable TOVIK_PASSWORD; else it is asked for.

Example:
  tovik-host catalogue --url https://cloud.example --project plant \
      --email operator@example.com --json > plant.catalogue.json)";

struct Catalogue
{
    config::CommonOptions common;
    bool tree = false;
    bool table = false;

    QString textOf(const service::Catalogue& catalogue) const;
    int run() const;
};

/// A tree on a terminal and a table elsewhere, unless the options say otherwise.
QString Catalogue::textOf(const service::Catalogue& catalogue) const
{
    if (common.json)
        return service::catalogueJson(catalogue);
    return tree || (!table && isatty(STDOUT_FILENO) == 1) ? service::catalogueTree(catalogue)
                                                          : service::catalogueTable(catalogue);
}

int Catalogue::run() const
{
    config::Account account = config::resolveAccount(common, config::Account());
    config::requireAccount(account);
    terminal::Context context;
    context.log.start(common.log, common.verbose);
    if (!service::askForPassword(context, &account))
        return terminal::exitRefused;
    const std::optional<service::Catalogue> catalogue = catalogueOf(context, common, account);
    if (!catalogue)
        return terminal::exitRefused;
    context.out.write(textOf(*catalogue));
    return context.codeAfterWriting(terminal::exitDone);
}

} // namespace

void addCatalogue(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Catalogue>();
    CLI::App* const command =
        addCommand(app, run, "catalogue", "Print the groups and items that a service offers",
                   catalogue_text, [options] { return options->run(); });
    addServiceOptions(command, options->common);
    CLI::Option* tree = command->add_flag("--tree", options->tree, "As a tree");
    CLI::Option* table = command->add_flag("--table", options->table, "As a table")->excludes(tree);
    command->add_flag("-j,--json", options->common.json, "As JSON, for configure and diff")
        ->excludes(tree)
        ->excludes(table);
}

} // namespace tovik_host
