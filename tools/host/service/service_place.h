#ifndef TOOLS_HOST_SERVICE_SERVICE_PLACE_H
#define TOOLS_HOST_SERVICE_SERVICE_PLACE_H

#include "tools/host/config/service_account.h"
#include "tools/host/service/catalogue_data.h"
#include "tools/host/terminal/debug_log.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/unix_signals.h"

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

/// The exit code of a command that ends with \a code and has printed its result to \a out: if that
/// could not be written, it says so. A reader that has gone has had all that it wanted.
int codeAfterWriting(const terminal::Output& out, int code);

/// What these commands work with.
struct ServicePlace
{
    /// Throws UsageError when the log cannot be written.
    explicit ServicePlace(const ServiceOptions& options);

    /// Asks the user for the password if nobody has told it and there is a terminal to ask on.
    /// False: the user did not answer.
    bool askForPassword(config::Account* account);
    /// Logs in and loads the catalogue. Nothing: it has been said why.
    std::optional<Catalogue> fetchCatalogue(const config::Account& account);
    void complain(const QString& problem);
    void warn(const QString& text);

    const ServiceOptions options;
    terminal::DebugLog log;
    terminal::UnixSignals unix_signals;
    terminal::Output out;
    terminal::Output err;
};

} // namespace tovik_host::service

#endif
