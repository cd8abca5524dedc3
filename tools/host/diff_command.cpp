#include "tools/host/diff_command.h"

#include "tools/host/config/config_file.h"
#include "tools/host/service/catalogue_file.h"
#include "tools/host/service/diff_items.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/json_text.h"

#include <QUrl>

#include <unistd.h>

#include <algorithm>

namespace tovik_host {

namespace {

/// One side, and the account that its file names.
struct LoadedSide
{
    QString name;
    service::DiffSide side;
    config::Account account;
};

LoadedSide sideFromFile(const QString& path, bool needs_account)
{
    const config::JsonFile file =
        service::readJsonAs(path, QStringLiteral("catalogue or configuration"));
    LoadedSide loaded;
    loaded.name = path;
    if (!service::isCatalogueFile(file)) {
        loaded.side = service::diffSide(config::loadConfig(path, false).config);
        if (needs_account)
            loaded.account = config::accountOfConfig(path);
        return loaded;
    }
    const service::Catalogue catalogue = service::readCatalogue(file);
    loaded.side = service::diffSide(catalogue);
    loaded.account.service.url = catalogue.url;
    loaded.account.service.project = catalogue.project;
    loaded.account.service.email = catalogue.email;
    return loaded;
}

std::optional<LoadedSide> sideFromService(const service::ServiceOptions& service,
                                          const LoadedSide& before)
{
    config::Account account = config::resolveAccount(service.account, before.account);
    config::requireAccount(account);
    service::ServicePlace place(service);
    if (!place.askForPassword(&account))
        return std::nullopt;
    const std::optional<service::Catalogue> catalogue = place.fetchCatalogue(account);
    if (!catalogue)
        return std::nullopt;
    return LoadedSide{QUrl(account.service.url).toString(QUrl::RemoveUserInfo),
                      service::diffSide(*catalogue), account};
}

std::string plain(const QString& text)
{
    return text.toStdString();
}

QString asJson(const LoadedSide& before, const LoadedSide& after,
               const QVector<service::Difference>& differences)
{
    value::OrderedJson list = value::OrderedJson::array();
    for (const service::Difference& difference : differences) {
        value::OrderedJson entry = {{"change", plain(service::kindName(difference.kind))},
                                    {"id", plain(difference.id)},
                                    {"item", plain(difference.path)}};
        if (!difference.before.isNull())
            entry["before"] = plain(difference.before);
        if (!difference.after.isNull())
            entry["after"] = plain(difference.after);
        if (!difference.same_name_id.isEmpty())
            entry["same_name_id"] = plain(difference.same_name_id);
        list.push_back(entry);
    }
    const value::OrderedJson root = {
        {"old", plain(before.name)}, {"new", plain(after.name)}, {"differences", list}};
    return QString::fromStdString(root.dump(2)) + QLatin1Char('\n');
}

} // namespace

int runDiff(const service::ServiceOptions& service, const DiffOptions& options)
{
    const bool asks_service = options.after.isEmpty();
    const LoadedSide before = sideFromFile(options.before, asks_service);
    const std::optional<LoadedSide> after =
        asks_service ? sideFromService(service, before) : sideFromFile(options.after, false);
    if (!after)
        return terminal::exitUsage;
    QVector<service::Difference> differences = service::findDifferences(before.side, after->side);
    differences.erase(std::remove_if(differences.begin(), differences.end(),
                                     [&options](const service::Difference& difference) {
                                         return options.ignored.contains(
                                             service::kindName(difference.kind));
                                     }),
                      differences.end());
    QString text;
    if (options.json) {
        text = asJson(before, *after, differences);
    } else {
        for (const service::Difference& difference : differences)
            text += service::differenceLine(difference) + QLatin1Char('\n');
    }
    terminal::Output out(STDOUT_FILENO);
    out.write(text);
    return service::codeAfterWriting(out, differences.isEmpty() ? terminal::exitDone
                                                                : terminal::exitRefused);
}

} // namespace tovik_host
