#include "tools/host/service/catalogue_fetch.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/line_input.h"
#include "tools/host/terminal/text.h"
#include "tools/host/value/status_text.h"

#include <QUrl>

#include <unistd.h>

namespace tovik_host::service {

namespace {

const int drawing_interval = 50;

} // namespace

ProgressView::ProgressView(terminal::Output& output, bool is_quiet, bool is_terminal,
                           int line_interval)
    : output_(output),
      is_quiet_(is_quiet),
      is_terminal_(is_terminal),
      line_interval_(line_interval)
{
    since_line_.start();
}

ProgressView::~ProgressView()
{
    // With spaces, as not every terminal can clear a line.
    if (shown_width_ > 0)
        output_.write(u"\r%1\r"_s.arg(QString(shown_width_, u' ')));
}

void ProgressView::show(const CatalogueProgress& progress)
{
    const int interval = is_terminal_ ? drawing_interval : line_interval_;
    const bool is_first = is_terminal_ && shown_width_ == 0;
    if (is_quiet_ || (!is_first && since_line_.elapsed() < interval))
        return;
    since_line_.start();
    const QString text =
        u"Loading the catalogue: %1 of %2, %3"_s.arg(progress.groups_loaded)
            .arg(counted(progress.groups_known, u"group"_s), counted(progress.items, u"item"_s));
    if (!is_terminal_) {
        output_.line(text);
        return;
    }
    output_.write(u'\r' + text.leftJustified(shown_width_));
    shown_width_ = qMax(shown_width_, text.size());
}

bool askForPassword(terminal::Context& context, config::Account* account)
{
    terminal::LineInput input(STDIN_FILENO, context.err, context.unix_signals);
    if (account->has_password)
        return true;
    if (!input.isTerminal()) {
        throw terminal::UsageError(
            u"no password was given; set %1, or use --password-file"_s.arg(account->password_env));
    }
    const std::optional<QString> answer =
        input.askSecretly(u"Password of %1 for project %2: "_s.arg(
            terminal::printable(account->email), terminal::printable(account->project)));
    if (!answer) {
        context.complain(u"no password was given"_s);
        return false;
    }
    account->password = *answer;
    account->has_password = true;
    return true;
}

std::optional<Catalogue> fetchCatalogue(terminal::Context& context,
                                        const config::CommonOptions& options,
                                        const config::Account& account, ClientOutcome* failure)
{
    CloudClient client(account);
    QObject::connect(&context.unix_signals, &terminal::UnixSignals::endAsked, &client,
                     &CloudClient::interrupt);
    if (context.unix_signals.endRequested())
        client.interrupt();
    const QString url = QUrl(account.url).toString(QUrl::RemoveUserInfo);
    const ClientOutcome login = client.login(options.timeout);
    if (login.kind != ClientOutcome::Done) {
        context.complain(u"login at %1 failed: %2"_s.arg(url, login.reason) +
                         (login.isRefusal() ? u": "_s + value::loginAdvice() : QString()));
        *failure = login;
        return std::nullopt;
    }
    ClientOutcome loading;
    CatalogueProgress latest = {};
    {
        ProgressView view(context.err, options.quiet || options.verbose,
                          isatty(STDERR_FILENO) == 1);
        loading = client.loadCatalogue(options.timeout, [&](const CatalogueProgress& progress) {
            latest = progress;
            view.show(progress);
        });
    }
    if (loading.kind != ClientOutcome::Done) {
        const QString where = latest.groups_known == 0
                                  ? QString()
                                  : u" after %1 of %2"_s.arg(latest.groups_loaded)
                                        .arg(counted(latest.groups_known, u"group"_s));
        context.complain(u"loading the catalogue failed%1: %2"_s.arg(where, loading.reason));
        *failure = loading;
        return std::nullopt;
    }
    return Catalogue{account, client.groups()};
}

} // namespace tovik_host::service
