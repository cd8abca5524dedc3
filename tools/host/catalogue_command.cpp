#include "tools/host/catalogue_command.h"

#include "tools/host/service/catalogue_file.h"
#include "tools/host/service/catalogue_text.h"
#include "tools/host/terminal/exit_code.h"

#include <unistd.h>

namespace tovik_host {

namespace {

QString textOf(const Catalogue& catalogue, CatalogueForm form)
{
    if (form == CatalogueForm::automatic)
        form = isatty(STDOUT_FILENO) == 1 ? CatalogueForm::tree : CatalogueForm::table;
    if (form == CatalogueForm::json)
        return catalogueJson(catalogue);
    return form == CatalogueForm::tree ? catalogueTree(catalogue) : catalogueTable(catalogue);
}

} // namespace

int runCatalogue(const ServiceOptions& options, CatalogueForm form)
{
    Account account = resolveAccount(options.account, Account());
    requireAccount(account);
    ServicePlace place(options);
    if (!place.askForPassword(&account))
        return exitRefused;
    const std::optional<Catalogue> catalogue = place.fetchCatalogue(account);
    if (!catalogue)
        return exitRefused;
    place.out.write(textOf(*catalogue, form));
    return codeAfterWriting(place.out, exitDone);
}

} // namespace tovik_host
