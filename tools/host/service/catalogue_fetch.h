#ifndef TOOLS_HOST_SERVICE_CATALOGUE_FETCH_H
#define TOOLS_HOST_SERVICE_CATALOGUE_FETCH_H

#include "tools/host/config/account.h"
#include "tools/host/service/catalogue.h"
#include "tools/host/terminal/context.h"

#include <QString>

#include <optional>

namespace tovik_host::service {

/// What the commands have in common that ask a service for its catalogue.
struct ServiceOptions
{
    config::AccountOptions account;
    double timeout = 10;
    bool quiet = false;   ///< No progress.
    bool verbose = false; ///< The client's debug lines go to the standard error.
    QString log;          ///< They go to this file; empty: to none.
};

/// Asks the user for the password if nobody has told it and there is a terminal to ask on. False:
/// the user did not answer.
bool askForPassword(terminal::Context& context, config::Account* account);

/// Logs in and loads the catalogue. Nothing: it has been said why.
std::optional<Catalogue> fetchCatalogue(terminal::Context& context, const ServiceOptions& options,
                                        const config::Account& account);

} // namespace tovik_host::service

#endif
