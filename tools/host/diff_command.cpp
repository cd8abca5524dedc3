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
    DiffSide side;
    Account account;
};

LoadedSide sideFromFile(const QString& path, bool needs_account)
{
    const JsonFile file = readJsonAs(path, QStringLiteral("catalogue or configuration"));
    LoadedSide loaded;
    loaded.name = path;
    if (!isCatalogueFile(file)) {
        loaded.side = diffSide(loadConfig(path, false).config);
        if (needs_account)
            loaded.account = accountOfConfig(path);
        return loaded;
    }
    const Catalogue catalogue = readCatalogue(file);
    loaded.side = diffSide(catalogue);
    loaded.account.service.url = catalogue.url;
    loaded.account.service.project = catalogue.project;
    loaded.account.service.email = catalogue.email;
    return loaded;
}

std::optional<LoadedSide> sideFromService(const ServiceOptions& service, const LoadedSide& before)
{
    Account account = resolveAccount(service.account, before.account);
    requireAccount(account);
    ServicePlace place(service);
    if (!place.askForPassword(&account))
        return std::nullopt;
    const std::optional<Catalogue> catalogue = place.fetchCatalogue(account);
    if (!catalogue)
        return std::nullopt;
    return LoadedSide{QUrl(account.service.url).toString(QUrl::RemoveUserInfo),
                      diffSide(*catalogue), account};
}

std::string plain(const QString& text)
{
    return text.toStdString();
}

QString asJson(const LoadedSide& before, const LoadedSide& after,
               const QVector<Difference>& differences)
{
    OrderedJson list = OrderedJson::array();
    for (const Difference& difference : differences) {
        OrderedJson entry = {{"change", plain(kindName(difference.kind))},
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
    const OrderedJson root = {
        {"old", plain(before.name)}, {"new", plain(after.name)}, {"differences", list}};
    return QString::fromStdString(root.dump(2)) + QLatin1Char('\n');
}

} // namespace

int runDiff(const ServiceOptions& service, const DiffOptions& options)
{
    const bool asks_service = options.after.isEmpty();
    const LoadedSide before = sideFromFile(options.before, asks_service);
    const std::optional<LoadedSide> after =
        asks_service ? sideFromService(service, before) : sideFromFile(options.after, false);
    if (!after)
        return exitUsage;
    QVector<Difference> differences = findDifferences(before.side, after->side);
    differences.erase(std::remove_if(differences.begin(), differences.end(),
                                     [&options](const Difference& difference) {
                                         return options.ignored.contains(kindName(difference.kind));
                                     }),
                      differences.end());
    QString text;
    if (options.json) {
        text = asJson(before, *after, differences);
    } else {
        for (const Difference& difference : differences)
            text += differenceLine(difference) + QLatin1Char('\n');
    }
    Output out(STDOUT_FILENO);
    out.write(text);
    return codeAfterWriting(out, differences.isEmpty() ? exitDone : exitRefused);
}

} // namespace tovik_host
