#include "tools/host/service/configure.h"
#include "tools/host/commands.h"
#include "tools/host/config/config_file.h"
#include "tools/host/service/catalogue.h"
#include "tools/host/service/catalogue_fetch.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/line_input.h"
#include "tools/host/terminal/text.h"

#include <CLI/CLI.hpp>
#include <QFileInfo>

#include <unistd.h>

namespace tovik_host {

namespace {

const char configure_text[] =
    R"(Makes a configuration for watch, read and write from the service's catalogue or a saved
one. A pattern is GROUP/ITEM, or the name of an item, in which * stands for any
characters, ? for one, [abc] for one of several ([[] for a bracket); or an id as it is.
What is the whole name of an item stands for it alone. Items are called Group.Item; a name
that is taken gets a number. Instead of the password the file says where to find it.
Exit codes: as of the other commands; 1 also if nothing was chosen.

Examples:
  tovik-host configure 'Boiler/*' --exclude '*test*' --url https://cloud.example \
      --project plant --email operator@example.com --output plant.json
  tovik-host configure --catalogue plant.catalogue.json --type Bit --output bits.json
  tovik-host configure --config plant.json --interactive --output chosen.json)";

struct Configure
{
    config::CommonOptions common;
    QString catalogue; ///< A saved catalogue; empty: the service is asked.
    service::ItemFilter filter;
    bool interactive = false;
    QString output; ///< Empty: the standard output.
    bool force = false;
    bool with_password = false;

    int run() const;
};

/// A folder that cannot be written to is better known of before the user has chosen.
void checkFolder(const QString& output)
{
    const QFileInfo folder(QFileInfo(output).absolutePath());
    if (folder.isDir() && folder.isWritable())
        return;
    const QString problem = folder.isDir() ? u"cannot write %1: the folder %2 is not writable"_s
                                           : u"cannot write %1: there is no folder %2"_s;
    throw terminal::UsageError(
        problem.arg(terminal::printable(output), terminal::printable(folder.filePath())));
}

/// What is wrong with the options, before anybody is asked for anything.
void checkOptions(const Configure& options)
{
    if (!options.output.isEmpty()) {
        terminal::checkOutputFile(options.output, options.force);
        checkFolder(options.output);
    }
    const service::ItemFilter& filter = options.filter;
    service::checkFilter(filter);
    if (!options.interactive && filter.patterns.isEmpty() && filter.types.isEmpty()) {
        throw terminal::UsageError(
            u"which items? Give patterns such as 'Boiler/*' (or '*' for all), --type TYPE, or "
            "--interactive"_s);
    }
}

/// Lets the user choose; nothing if the user leaves.
std::optional<QVector<service::OfferedItem>> choose(terminal::Context& context,
                                                    const QVector<service::OfferedItem>& offered)
{
    terminal::LineInput input(STDIN_FILENO, context.err, context.unix_signals);
    // What leaves room for a heading and the prompt.
    service::ConfigureDialogue dialogue(offered, context.err.screenSize().rows - 4);
    context.err.write(dialogue.opening());
    while (dialogue.state() == service::ConfigureDialogue::State::open) {
        const std::optional<QString> line = input.ask(dialogue.prompt());
        if (!line) {
            context.err.line(QString());
            return std::nullopt;
        }
        context.err.write(dialogue.answer(*line));
    }
    if (dialogue.state() == service::ConfigureDialogue::State::quit)
        return std::nullopt;
    return dialogue.chosen();
}

/// The wanted items; nothing if there are none, which has been said then.
std::optional<QVector<service::OfferedItem>> wantedItems(terminal::Context& context,
                                                         const service::Catalogue& catalogue,
                                                         const Configure& options)
{
    const service::FilteredItems filtered =
        service::filterItems(service::offeredItems(catalogue.groups), options.filter);
    if (filtered.items.isEmpty()) {
        context.complain(u"nothing is chosen of %1%2"_s.arg(
            service::counted(catalogue.itemCount(), u"item"_s),
            filtered.without_match.isEmpty() ? u": no item meets all of the conditions"_s
                                             : u"; nothing in the catalogue matches %1"_s.arg(
                                                   filtered.without_match.join(u", "_s))));
        return std::nullopt;
    }
    for (const QString& pattern : filtered.without_match)
        context.warn(u"nothing in the catalogue matches %1"_s.arg(pattern));
    if (!options.interactive)
        return filtered.items;
    const auto chosen = choose(context, filtered.items);
    if (!chosen)
        context.complain(u"nothing is chosen, and nothing was written"_s);
    return chosen;
}

void write(terminal::Context& context, const config::Account& account,
           const QVector<config::ItemConfig>& items, const Configure& options)
{
    const QString text = config::configJson(account, items, options.with_password);
    if (options.output.isEmpty()) {
        context.out.write(text);
        return;
    }
    terminal::checkOutputFile(options.output, options.force);
    terminal::saveFile(options.output, text.toUtf8(), options.with_password);
    if (!options.common.quiet) {
        context.err.line(u"%1: %2"_s.arg(terminal::printable(options.output),
                                         service::counted(items.size(), u"item"_s)));
    }
}

int Configure::run() const
{
    checkOptions(*this);
    std::optional<service::Catalogue> offered;
    if (!catalogue.isEmpty())
        offered = service::readCatalogue(config::readJson(catalogue, u"catalogue"_s));
    const bool needs_password = !offered || with_password;
    config::Account account = config::resolveAccount(
        common, offered ? offered->account : config::Account(), needs_password);
    config::requireAccount(account);
    terminal::Context context;
    context.log.start(common.log, common.verbose);
    if (needs_password && !service::askForPassword(context, &account))
        return terminal::exitRefused;
    if (with_password && !account.has_password) {
        throw terminal::UsageError(
            u"--with-password: there is no password; set %1, or use --password-file"_s.arg(
                account.password_env));
    }
    if (!offered)
        offered = catalogueOf(context, common, account);
    if (!offered)
        return terminal::exitRefused;
    const auto items = wantedItems(context, *offered, *this);
    if (!items)
        return terminal::exitRefused;
    const service::NamedItems named = service::nameItems(*items);
    for (const QString& warning : named.warnings)
        context.warn(warning);
    write(context, account, named.items, *this);
    return context.codeAfterWriting(terminal::exitDone);
}

} // namespace

void addConfigure(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Configure>();
    CLI::App* const command =
        addCommand(app, run, "configure", "Make a configuration from a service's catalogue",
                   configure_text, [options] { return options->run(); });
    service::ItemFilter& filter = options->filter;
    addTexts(command, "PATTERN", filter.patterns, "Items to choose, such as 'Boiler/*'");
    addTexts(command, "--exclude", filter.excluded, "Items to leave out; repeatable", "PATTERN")
        ->allow_extra_args(false);
    addTexts(command, "--type", filter.types, "Only items of this type; repeatable", "TYPE")
        ->allow_extra_args(false);
    command->add_flag("--interactive", options->interactive, "Choose among them in a dialogue");
    addText(command, "--catalogue", options->catalogue,
            "Saved catalogue (catalogue --json), instead of asking the service", "FILE");
    addText(command, "-o,--output", options->output, "File to write (default: standard output)",
            "FILE");
    command->add_flag("--force", options->force, "Replace an existing file");
    command->add_flag("--with-password", options->with_password,
                      "Put the password into the configuration, as plain text");
    addServiceOptions(command, options->common);
}

} // namespace tovik_host
