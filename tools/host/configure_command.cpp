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
        throw UsageError(QStringLiteral("cannot write %1: there is no folder %2")
                             .arg(printable(output), printable(folder.filePath())));
    }
    if (!folder.isWritable()) {
        throw UsageError(QStringLiteral("cannot write %1: the folder %2 is not writable")
                             .arg(printable(output), printable(folder.filePath())));
    }
}

/// What is wrong with the options, before anybody is asked for anything.
void checkOptions(const ConfigureOptions& options)
{
    if (!options.output.isEmpty()) {
        checkOutputFile(options.output, options.force);
        checkFolder(options.output);
    }
    const ItemFilter& filter = options.filter;
    checkFilter(filter);
    if (!options.interactive && filter.patterns.isEmpty() && filter.types.isEmpty()) {
        throw UsageError(QStringLiteral("which items? Give patterns such as 'Boiler/*' (or '*' for "
                                        "all), --type TYPE, or --interactive"));
    }
}

Catalogue catalogueFromFile(const QString& path)
{
    const JsonFile file = readJsonAs(path, QStringLiteral("catalogue"));
    return readCatalogue(file);
}

Account accountFor(const ServiceOptions& service, const Catalogue& saved, bool needs_password)
{
    Account account;
    account.service.url = saved.url;
    account.service.project = saved.project;
    account.service.email = saved.email;
    account = resolveAccount(service.account, account, needs_password);
    requireAccount(account);
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
std::optional<QVector<OfferedItem>> choose(ServicePlace& place, const QVector<OfferedItem>& offered)
{
    LineInput input(STDIN_FILENO, place.err, place.unix_signals);
    ConfigureDialogue dialogue(offered, pageSize());
    place.err.write(dialogue.opening());
    while (dialogue.state() == ConfigureDialogue::State::open) {
        const std::optional<QString> line = input.ask(dialogue.prompt());
        if (!line) {
            place.err.line(QString());
            return std::nullopt;
        }
        place.err.write(dialogue.answer(*line));
    }
    if (dialogue.state() == ConfigureDialogue::State::quit)
        return std::nullopt;
    return dialogue.chosen();
}

/// The wanted items; nothing if there are none, which has been said then.
std::optional<QVector<OfferedItem>> wantedItems(ServicePlace& place, const Catalogue& catalogue,
                                                const ConfigureOptions& options)
{
    const FilteredItems filtered = filterItems(offeredItems(catalogue), options.filter);
    if (filtered.items.isEmpty()) {
        place.complain(QStringLiteral("nothing is chosen of %1%2")
                           .arg(counted(catalogue.itemCount(), QStringLiteral("item")),
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

void write(ServicePlace& place, const Account& account, const QVector<ItemConfig>& items,
           const ConfigureOptions& options)
{
    const QString text = configJson(account, items, options.with_password);
    if (options.output.isEmpty()) {
        place.out.write(text);
        return;
    }
    checkOutputFile(options.output, options.force);
    saveFile(options.output, text.toUtf8(), options.with_password);
    if (!place.options.quiet) {
        place.err.line(QStringLiteral("%1: %2").arg(printable(options.output),
                                                    counted(items.size(), QStringLiteral("item"))));
    }
}

} // namespace

int runConfigure(const ServiceOptions& service, const ConfigureOptions& options)
{
    checkOptions(options);
    std::optional<Catalogue> catalogue;
    if (!options.catalogue.isEmpty())
        catalogue = catalogueFromFile(options.catalogue);
    const bool needs_password = !catalogue || options.with_password;
    Account account = accountFor(service, catalogue.value_or(Catalogue()), needs_password);
    ServicePlace place(service);
    if (needs_password && !place.askForPassword(&account))
        return exitRefused;
    if (options.with_password && !account.has_password) {
        throw UsageError(QStringLiteral("--with-password: there is no password; set %1, or use "
                                        "--password-file")
                             .arg(account.password_env));
    }
    if (!catalogue)
        catalogue = place.fetchCatalogue(account);
    if (!catalogue)
        return exitRefused;
    const auto items = wantedItems(place, *catalogue, options);
    if (!items)
        return exitRefused;
    const NamedItems named = nameItems(*items);
    for (const QString& warning : named.warnings)
        place.warn(warning);
    write(place, account, named.items, options);
    return codeAfterWriting(place.out, exitDone);
}

} // namespace tovik_host
