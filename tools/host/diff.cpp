#include "tools/host/commands.h"
#include "tools/host/config/config_file.h"
#include "tools/host/service/catalogue.h"
#include "tools/host/service/catalogue_fetch.h"
#include "tools/host/service/diff_items.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/json_text.h"

#include <CLI/CLI.hpp>
#include <QUrl>

#include <algorithm>

namespace tovik_host {

namespace {

const char diff_text[] =
    R"(Compares two saved catalogues, or a configuration with a catalogue; without NEW with the
service's catalogue of now. Items are the same if they have the same id. With a
configuration only its items count: gone, renamed, of another type.

Exit codes, as of diff: 0 no difference; 1 differences; 2 trouble, also with the service.

Examples:
  tovik-host diff plant.catalogue.json
  tovik-host diff plant.json new.catalogue.json --json)";

struct Diff
{
    config::CommonOptions common;
    QString before;      ///< A saved catalogue or a configuration.
    QString after;       ///< Likewise; empty: the service is asked.
    QStringList ignored; ///< Kinds of differences that do not count.

    int run() const;
};

/// One side, and the account that its file names.
struct LoadedSide
{
    QString name;
    service::DiffSide side;
    config::Account account;
};

LoadedSide sideFromFile(const QString& path)
{
    const config::JsonFile file = config::readJson(path, u"catalogue or configuration"_s);
    if (service::isCatalogue(file)) {
        const service::Catalogue catalogue = service::readCatalogue(file);
        return {path, service::diffSide(catalogue), catalogue.account};
    }
    const config::HostConfig config = config::loadConfig(path, config::Password::in_file).config;
    return {path, service::diffSide(config), config.service};
}

std::optional<LoadedSide> sideFromService(const config::CommonOptions& common,
                                          const LoadedSide& before)
{
    config::Account account = config::resolveAccount(common, before.account);
    config::requireAccount(account);
    terminal::Context context;
    context.log.start(common.log, common.verbose);
    if (!service::askForPassword(context, &account))
        return std::nullopt;
    const std::optional<service::Catalogue> catalogue = catalogueOf(context, common, account);
    if (!catalogue)
        return std::nullopt;
    return LoadedSide{QUrl(account.url).toString(QUrl::RemoveUserInfo),
                      service::diffSide(*catalogue), account};
}

QString asJson(const LoadedSide& before, const LoadedSide& after,
               const QVector<service::Difference>& differences)
{
    value::OrderedJson list = value::OrderedJson::array();
    for (const service::Difference& difference : differences) {
        value::OrderedJson entry = {{"change", service::kindName(difference.kind)},
                                    {"id", difference.id},
                                    {"item", difference.path}};
        if (!difference.before.isNull())
            entry["before"] = difference.before;
        if (!difference.after.isNull())
            entry["after"] = difference.after;
        if (!difference.same_name_id.isEmpty())
            entry["same_name_id"] = difference.same_name_id;
        list.push_back(entry);
    }
    return value::jsonText({{"version", value::json_version},
                            {"old", before.name},
                            {"new", after.name},
                            {"differences", list}});
}

int Diff::run() const
{
    const bool asks_service = after.isEmpty();
    const LoadedSide old_side = sideFromFile(before);
    const std::optional<LoadedSide> new_side =
        asks_service ? sideFromService(common, old_side) : sideFromFile(after);
    if (!new_side)
        return terminal::exitUsage;
    QVector<service::Difference> differences =
        service::findDifferences(old_side.side, new_side->side);
    differences.erase(std::remove_if(differences.begin(), differences.end(),
                                     [this](const service::Difference& difference) {
                                         return ignored.contains(
                                             service::kindName(difference.kind));
                                     }),
                      differences.end());
    QString text;
    if (common.json) {
        text = asJson(old_side, *new_side, differences);
    } else {
        for (const service::Difference& difference : differences)
            text += service::differenceLine(difference) + u'\n';
    }
    terminal::Context context;
    context.out.write(text);
    return context.codeAfterWriting(differences.isEmpty() ? terminal::exitDone
                                                          : terminal::exitRefused);
}

} // namespace

void addDiff(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Diff>();
    CLI::App* const command = addCommand(app, run, "diff", "Show what has changed in a catalogue",
                                         diff_text, [options] { return options->run(); });
    addText(command, "OLD", options->before, "Saved catalogue, or a configuration")->required();
    addText(command, "NEW", options->after, "The same; without it the service is asked");
    addTexts(command, "--ignore", options->ignored, "Differences that do not count; repeatable",
             "KIND")
        ->allow_extra_args(false)
        ->check(CLI::IsMember(std::set<std::string>{"gone", "added", "renamed", "type", "moved",
                                                    "length", "group-renamed", "access"}));
    command->add_flag("-j,--json", options->common.json, "As JSON");
    addServiceOptions(command, options->common);
}

} // namespace tovik_host
