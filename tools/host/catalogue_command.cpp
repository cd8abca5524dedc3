#include "tools/host/catalogue_command.h"

#include "tools/host/service/catalogue_file.h"
#include "tools/host/service/catalogue_text.h"
#include "tools/host/terminal/exit_code.h"

#include <unistd.h>

namespace tovik_host {

namespace {

QString textOf(const service::Catalogue& catalogue, CatalogueForm form)
{
    if (form == CatalogueForm::automatic)
        form = isatty(STDOUT_FILENO) == 1 ? CatalogueForm::tree : CatalogueForm::table;
    if (form == CatalogueForm::json)
        return service::catalogueJson(catalogue);
    return form == CatalogueForm::tree ? service::catalogueTree(catalogue)
                                       : service::catalogueTable(catalogue);
}

} // namespace

int runCatalogue(const service::ServiceOptions& options, CatalogueForm form)
{
    config::Account account = config::resolveAccount(options.account, config::Account());
    config::requireAccount(account);
    service::ServicePlace place(options);
    if (!place.askForPassword(&account))
        return terminal::exitRefused;
    const std::optional<service::Catalogue> catalogue = place.fetchCatalogue(account);
    if (!catalogue)
        return terminal::exitRefused;
    place.out.write(textOf(*catalogue, form));
    return service::codeAfterWriting(place.out, terminal::exitDone);
}

} // namespace tovik_host
