#ifndef TOOLS_HOST_SERVICE_CATALOGUE_FETCH_H
#define TOOLS_HOST_SERVICE_CATALOGUE_FETCH_H

#include "tools/host/config/config_file.h"
#include "tools/host/service/catalogue.h"
#include "tools/host/service/cloud_client.h"
#include "tools/host/terminal/context.h"
#include "tools/host/terminal/output.h"

#include <QElapsedTimer>
#include <QString>

#include <optional>

namespace tovik_host::service {

/// Shows on the standard error how far the loading of a catalogue is: in one line of a terminal,
/// which is empty again in the end, and by a line every few seconds elsewhere.
class ProgressView
{
public:
    /// \param line_interval milliseconds between lines, where there is no terminal.
    ProgressView(terminal::Output& output, bool is_quiet, bool is_terminal,
                 int line_interval = 2000);
    ~ProgressView();
    ProgressView(const ProgressView&) = delete;
    ProgressView& operator=(const ProgressView&) = delete;

    void show(const CatalogueProgress& progress);

private:
    terminal::Output& output_;
    bool is_quiet_;
    bool is_terminal_;
    int line_interval_;
    int shown_width_ = 0;
    QElapsedTimer since_line_;
};

/// Asks the user for the password if nobody has told it. False: the user did not answer. Throws
/// UsageError if there is no terminal to ask on.
bool askForPassword(terminal::Context& context, config::Account* account);

/// Logs in and loads the catalogue. Nothing: it has been said why, and \a failure is what failed.
std::optional<Catalogue> fetchCatalogue(terminal::Context& context,
                                        const config::CommonOptions& options,
                                        const config::Account& account, ClientOutcome* failure);

} // namespace tovik_host::service

#endif
