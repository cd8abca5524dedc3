#include "tools/host/check/check.h"

#include "tools/host/check/judge.h"
#include "tools/host/check/probe.h"
#include "tools/host/config/config_file.h"
#include "tools/host/driver/setup.h"
#include "tools/host/service/cloud_client.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/trace.h"

#include <QUrl>

#include <functional>
#include <memory>

namespace tovik_host::check {

namespace {

/// Time-outs in a row after which the other items are left alone.
const int most_timeouts = 3;

/// Seconds that a step may take when something has failed already, and only its cause is wanted.
const double longest_look = 3;

/// The items of a configuration that \a patterns mean, in its order. Throws UsageError.
QVector<config::ItemConfig> itemsFor(const QVector<config::ItemConfig>& all,
                                     const QStringList& patterns)
{
    const QVector<config::ItemConfig> chosen =
        config::chosenItems(all, patterns, u"--items: the configuration"_s);
    QVector<config::ItemConfig> wanted;
    for (const config::ItemConfig& item : all) {
        if (patterns.isEmpty() || config::findItem(chosen, item.name))
            wanted << item;
    }
    return wanted;
}

/// A configuration of nothing but the service's address.
config::HostConfig hostAt(const QString& url)
{
    config::HostConfig config;
    config.service.url = url;
    return config;
}

/// One run: takes the steps one after the other and shows each as it comes.
class Walk
{
public:
    using Tell = std::function<void(const CheckStep&)>;

    /// \param tell is told each step
    Walk(terminal::Context& context, const config::HostConfig& config,
         const QVector<config::ItemConfig>& items, double timeout, const Tell& tell,
         value::Trace* trace = nullptr)
        : context_(context),
          config_(config),
          url_(config_.service.url),
          items_(items),
          timeout_(timeout),
          tell_(tell),
          trace_(trace)
    {}

    Verdict toTheValues()
    {
        show(judgeErrorHandling(config_.error_handling));
        if (reachService() && converse())
            readItems();
        showNotTried();
        return judgeAll(steps_, context_.unix_signals.endRequested());
    }

    /// As far as no account is needed.
    Verdict toTheService()
    {
        reachService();
        Verdict verdict = judgeAll(steps_, context_.unix_signals.endRequested());
        if (verdict.is_well)
            verdict.summary =
                u"the way to the service is free; login, catalogue and values need an account: "
                "--config FILE"_s;
        return verdict;
    }

private:
    /// Shows \a step and keeps it. False: it is one that nothing comes after.
    bool show(const CheckStep& step)
    {
        steps_ << step;
        tell_(step);
        return step.severity != Severity::failure && !context_.unix_signals.endRequested() &&
               !context_.out.broken();
    }

    bool isEncrypted() const { return url_.scheme() == QLatin1String("https"); }

    /// The way up to the first words with the service, or with the proxy before it.
    bool reachService()
    {
        if (isEncrypted() && !show(judgeSslLibrary(probeSslLibrary())))
            return false;
        const QNetworkProxy proxy = proxyFor(url_);
        const ProxyFacts via = proxyFacts(proxy);
        if (via.isInForce())
            show(judgeProxy(via));
        const Probe probe(context_.unix_signals, timeout_);
        const NameFacts name = probe.lookUp(via.isInForce() ? via.host : url_.host());
        if (!show(judgeName(name, timeout_)))
            return false;
        QVector<ConnectFacts> connections;
        QString address;
        for (const QString& one : name.addresses) {
            connections << probe.connect(one, via.isInForce() ? via.port : portOf(url_));
            if (address.isEmpty() && connections.last().end == ProbeEnd::done)
                address = one;
        }
        for (const CheckStep& step : judgeConnections(connections, timeout_))
            show(step);
        if (address.isEmpty() || context_.unix_signals.endRequested())
            return false;
        return greet(via.isInForce() ? url_.host() : address, proxy);
    }

    /// The first words with the service at \a address.
    bool greet(const QString& address, const QNetworkProxy& proxy)
    {
        const Probe probe(context_.unix_signals, timeout_);
        if (isEncrypted()) {
            const TlsFacts facts = probe.shakeHands(url_, address, proxy);
            if (!show(judgeHandshake(facts, timeout_)))
                return false;
            if (facts.has_certificate)
                show(judgeCertificate(facts.certificate, QDateTime::currentDateTime()));
            return true;
        }
        // Behind a proxy it is the proxy that would answer.
        return proxy.type() != QNetworkProxy::NoProxy ||
               show(judgePlainHttp(probe.speakHttp(url_, address), timeout_));
    }

    bool converse()
    {
        client_ = std::make_unique<service::CloudClient>(config_.service);
        client_->setListener(trace_);
        QObject::connect(&context_.unix_signals, &terminal::UnixSignals::endAsked, client_.get(),
                         &service::CloudClient::interrupt);
        if (!show(judgeConversation("login", client_->login(timeout_))))
            return false;
        const service::ClientOutcome outcome = client_->loadCatalogue(timeout_);
        if (!show(judgeCatalogue(outcome, client_->groups())))
            return false;
        return !isEncrypted() || show(judgeResumption(client_->hasResumed()));
    }

    void readItems()
    {
        const CatalogueItems catalogue = itemsOf(client_->groups());
        QVector<ItemFinding> findings;
        int timeouts = 0;
        bool is_complete = items_.size() == config_.items.size();
        for (const config::ItemConfig& item : items_) {
            ItemFinding finding = lookUpItem(item, catalogue);
            if (timeouts < most_timeouts && !context_.unix_signals.endRequested())
                readItem(&finding);
            timeouts = finding.outcome.kind == service::ClientOutcome::TimedOut ? timeouts + 1 : 0;
            is_complete = is_complete && finding.is_read;
            findings << finding;
            show(judgeItem(finding));
        }
        if (!findings.isEmpty() && !context_.unix_signals.endRequested())
            show(judgeCycle(findings, is_complete));
    }

    void readItem(ItemFinding* finding)
    {
        finding->is_read = true;
        finding->outcome =
            client_->readValue(finding->item.id, QString::fromLatin1(finding->item.type->name),
                               timeout_, &finding->value);
    }

    /// What the way would have had after its last step.
    void showNotTried()
    {
        QStringList names = {u"name"_s, u"connect"_s, isEncrypted() ? u"tls"_s : u"http"_s,
                             u"login"_s, u"catalogue"_s};
        for (const CheckStep& step : steps_)
            names.removeAll(step.name);
        if (names.isEmpty())
            return;
        for (const QString& name : names)
            show(makeStep(name.toLatin1().constData(), Severity::not_tried));
        for (const config::ItemConfig& item : items_) {
            ItemFinding finding;
            finding.item = item;
            show(judgeItem(finding));
        }
    }

    terminal::Context& context_;
    const config::HostConfig& config_;
    QUrl url_;
    QVector<config::ItemConfig> items_;
    double timeout_;
    const Tell tell_;
    value::Trace* trace_; ///< Null unless the options want one.
    CheckSteps steps_;
    std::unique_ptr<service::CloudClient> client_;
};

} // namespace

int runCheck(const config::CommonOptions& common, const QStringList& items)
{
    terminal::Context context;
    const bool has_account = !common.config.isEmpty();
    const config::HostConfig config =
        has_account ? driver::hostConfig(common, context)
                    : hostAt(config::givenAddress(common.url, common.url_file));
    const std::unique_ptr<value::Trace> trace =
        common.trace ? std::make_unique<value::Trace>(*common.trace) : nullptr;
    const QVector<config::ItemConfig> wanted = itemsFor(config.items, items);
    context.log.start(common.log, common.verbose);
    const auto tell = [&](const CheckStep& step) { context.out.line(stepLine(step, common.json)); };
    Walk walk(context, config, wanted, common.timeout, tell, trace.get());
    const Verdict verdict = has_account ? walk.toTheValues() : walk.toTheService();
    return tellVerdict(context, verdict, common.json);
}

QString causeOfSilence(terminal::Context& context, const QString& url, double timeout)
{
    if (context.unix_signals.endRequested())
        return QString();
    const config::HostConfig config = hostAt(url);
    const Verdict verdict =
        Walk(context, config, {}, qMin(timeout, longest_look), [](const CheckStep&) {
        }).toTheService();
    // What is worth a warning keeps no value away. Failures come first.
    if (verdict.is_well || context.unix_signals.endRequested())
        return QString();
    const Cause& cause = verdict.causes.first();
    return cause.advice.isEmpty() ? cause.found : u"%1; %2"_s.arg(cause.found, cause.advice);
}

void advise(terminal::Context& context, const QString& cause, const QString& next)
{
    if (!next.isEmpty())
        context.complain((cause.isEmpty() ? QString() : cause + u"; "_s) + u"next: "_s + next);
    else if (!cause.isEmpty())
        context.complain(cause);
}

QString checkCommand(const config::CommonOptions& common)
{
    QStringList words = {u"tovik-host check"_s};
    if (!common.config.isEmpty())
        words << u"--config"_s << common.config;
    if (!common.url.isEmpty())
        words << u"--url"_s << QUrl(common.url).toString(QUrl::RemoveUserInfo);
    if (!common.url_file.isEmpty())
        words << u"--url-file"_s << common.url_file;
    return words.join(u' ');
}

} // namespace tovik_host::check
