#include "tools/host/configure_command.h"

#include "tools/host/config/configure_file.h"
#include "tools/host/service/catalogue_file.h"
#include "tools/host/service/configure_dialogue.h"
#include "tools/host/service/configure_names.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/line_input.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/text_width.h"
#include "tools/host/terminal/usage_error.h"

#include <QFileInfo>

#include <sys/ioctl.h>
#include <unistd.h>

namespace tovik_host {

namespace {

/// A folder that cannot be written to is better known of before the user has chosen.
void checkFolder(const QString& output)
{
    const QFileInfo folder(QFileInfo(output).absolutePath());
    if (!folder.isDir()) {
        throw terminal::UsageError(
            QStringLiteral("cannot write %1: there is no folder %2")
                .arg(terminal::printable(output), terminal::printable(folder.filePath())));
    }
    if (!folder.isWritable()) {
        throw terminal::UsageError(
            QStringLiteral("cannot write %1: the folder %2 is not writable")
                .arg(terminal::printable(output), terminal::printable(folder.filePath())));
    }
}

/// What is wrong with the options, before anybody is asked for anything.
void checkOptions(const ConfigureOptions& options)
{
    if (!options.output.isEmpty()) {
        terminal::checkOutputFile(options.output, options.force);
        checkFolder(options.output);
    }
    const service::ItemFilter& filter = options.filter;
    service::checkFilter(filter);
    if (!options.interactive && filter.patterns.isEmpty() && filter.types.isEmpty()) {
        throw terminal::UsageError(
            QStringLiteral("which items? Give patterns such as 'Boiler/*' (or '*' for "
                           "all), --type TYPE, or --interactive"));
    }
}

service::Catalogue catalogueFromFile(const QString& path)
{
    const config::JsonFile file = service::readJsonAs(path, QStringLiteral("catalogue"));
    return service::readCatalogue(file);
}

config::Account accountFor(const service::ServiceOptions& service, const service::Catalogue& saved,
                           bool needs_password)
{
    config::Account account;
    account.service.url = saved.url;
    account.service.project = saved.project;
    account.service.email = saved.email;
    account = config::resolveAccount(service.account, account, needs_password);
    config::requireAccount(account);
    return account;
}

/// Items per page of the dialogue: what leaves room for a heading and the prompt.
int pageSize()
{
    winsize size = {};
    const bool is_known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0;
    return (is_known ? int(size.ws_row) : 24) - 4;
}

/// Lets the user choose; nothing if the user leaves.
std::optional<QVector<service::OfferedItem>> choose(service::ServicePlace& place,
                                                    const QVector<service::OfferedItem>& offered)
{
    terminal::LineInput input(STDIN_FILENO, place.err, place.unix_signals);
    service::ConfigureDialogue dialogue(offered, pageSize());
    place.err.write(dialogue.opening());
    while (dialogue.state() == service::ConfigureDialogue::State::open) {
        const std::optional<QString> line = input.ask(dialogue.prompt());
        if (!line) {
            place.err.line(QString());
            return std::nullopt;
        }
        place.err.write(dialogue.answer(*line));
    }
    if (dialogue.state() == service::ConfigureDialogue::State::quit)
        return std::nullopt;
    return dialogue.chosen();
}

/// The wanted items; nothing if there are none, which has been said then.
std::optional<QVector<service::OfferedItem>> wantedItems(service::ServicePlace& place,
                                                         const service::Catalogue& catalogue,
                                                         const ConfigureOptions& options)
{
    const service::FilteredItems filtered =
        service::filterItems(service::offeredItems(catalogue), options.filter);
    if (filtered.items.isEmpty()) {
        place.complain(QStringLiteral("nothing is chosen of %1%2")
                           .arg(service::counted(catalogue.itemCount(), QStringLiteral("item")),
                                filtered.without_match.isEmpty()
                                    ? QStringLiteral(": no item meets all of the conditions")
                                    : QStringLiteral("; nothing in the catalogue matches %1")
                                          .arg(filtered.without_match.join(QStringLiteral(", ")))));
        return std::nullopt;
    }
    for (const QString& pattern : filtered.without_match)
        place.warn(QStringLiteral("nothing in the catalogue matches %1").arg(pattern));
    if (!options.interactive)
        return filtered.items;
    const auto chosen = choose(place, filtered.items);
    if (!chosen)
        place.complain(QStringLiteral("nothing is chosen, and nothing was written"));
    return chosen;
}

void write(service::ServicePlace& place, const config::Account& account,
           const QVector<config::ItemConfig>& items, const ConfigureOptions& options)
{
    const QString text = config::configJson(account, items, options.with_password);
    if (options.output.isEmpty()) {
        place.out.write(text);
        return;
    }
    terminal::checkOutputFile(options.output, options.force);
    terminal::saveFile(options.output, text.toUtf8(), options.with_password);
    if (!place.options.quiet) {
        place.err.line(
            QStringLiteral("%1: %2").arg(terminal::printable(options.output),
                                         service::counted(items.size(), QStringLiteral("item"))));
    }
}

} // namespace

int runConfigure(const service::ServiceOptions& service, const ConfigureOptions& options)
{
    checkOptions(options);
    std::optional<service::Catalogue> catalogue;
    if (!options.catalogue.isEmpty())
        catalogue = catalogueFromFile(options.catalogue);
    const bool needs_password = !catalogue || options.with_password;
    config::Account account =
        accountFor(service, catalogue.value_or(service::Catalogue()), needs_password);
    service::ServicePlace place(service);
    if (needs_password && !place.askForPassword(&account))
        return terminal::exitRefused;
    if (options.with_password && !account.has_password) {
        throw terminal::UsageError(
            QStringLiteral("--with-password: there is no password; set %1, or use "
                           "--password-file")
                .arg(account.password_env));
    }
    if (!catalogue)
        catalogue = place.fetchCatalogue(account);
    if (!catalogue)
        return terminal::exitRefused;
    const auto items = wantedItems(place, *catalogue, options);
    if (!items)
        return terminal::exitRefused;
    const service::NamedItems named = service::nameItems(*items);
    for (const QString& warning : named.warnings)
        place.warn(warning);
    write(place, account, named.items, options);
    return service::codeAfterWriting(place.out, terminal::exitDone);
}

} // namespace tovik_host
