#include "tools/host/check/check_way.h"

#include "cloud/error_handling.h"

namespace tovik_host::check {

namespace {

const char* const end_names[] = {"done",      "refused", "unreachable",
                                 "timed out", "failed",  "interrupted"};

/// OpenSSL's version number of the form 0xMNNFFPPS: what libraries of one name have in common.
long seriesOf(long version)
{
    const long major = version >> 28;
    return major >= 3 ? major : version >> 20;
}

/// Such as "libssl.so.3".
QString libraryName(long version)
{
    const long major = version >> 28;
    if (major >= 3)
        return QStringLiteral("libssl.so.%1").arg(major);
    return QStringLiteral("libssl.so.%1.%2").arg(major).arg((version >> 20) & 0xFF);
}

QString proxyText(const ProxyFacts& facts)
{
    return QStringLiteral("%1:%2").arg(facts.host).arg(facts.port);
}

QString withReason(const QString& text, const QString& reason)
{
    return reason.isEmpty() ? text : QStringLiteral("%1: %2").arg(text, reason);
}

QString waitedText(double timeout)
{
    return QStringLiteral("no answer within %1 s").arg(timeout);
}

QString connectText(const ConnectFacts& facts, double timeout)
{
    switch (facts.end) {
    case ProbeEnd::done:
        return QStringLiteral("connected");
    case ProbeEnd::refused:
        return QStringLiteral("refused: nobody listens on this port, or a firewall says no");
    case ProbeEnd::unreachable:
        return withReason(QStringLiteral("no way to this address"), facts.reason);
    case ProbeEnd::timed_out:
        return waitedText(timeout);
    case ProbeEnd::interrupted:
        return QStringLiteral("interrupted");
    case ProbeEnd::failed:
        break;
    }
    return withReason(QStringLiteral("failed"), facts.reason);
}

QString connectAdvice(ProbeEnd end)
{
    switch (end) {
    case ProbeEnd::refused:
        return QStringLiteral("see whether the service runs, and on this port");
    case ProbeEnd::unreachable:
        return QStringLiteral("look at this machine's network: cable, address, route");
    case ProbeEnd::timed_out:
        return QStringLiteral("look for a firewall that swallows packets, or a machine that is "
                              "off; the driver waits as long as the system tries");
    default:
        return QStringLiteral("look at the network between here and the service");
    }
}

} // namespace

CheckStep judgeErrorHandling(const config::ErrorHandling& settings)
{
    // As the driver asks them.
    ::ErrorHandling handling;
    handling.type = settings.type;
    handling.return_time_en = settings.return_time_enabled;
    handling.restore_switch_bs_en = settings.restore_switch_enabled;
    if (handling.reconnectsByTimer()) {
        const QString every =
            settings.type == 1 ? QStringLiteral("reconnects every %1 s").arg(settings.return_time)
                               : QStringLiteral("reconnects every second");
        return makeStep("settings", Severity::ok, every);
    }
    if (handling.reconnectsByReads()) {
        return makeStep("settings", Severity::ok,
                        QStringLiteral("reconnects when the host reads: every second read in an "
                                       "error tries once"));
    }
    return makeStep("settings", Severity::warning,
                    QStringLiteral("never reconnects: after the first error no value comes until "
                                   "the host is started anew"),
                    QStringLiteral("set error_handling.return_time_enabled, or another type"));
}

CheckStep judgeSslLibrary(const SslLibraryFacts& facts)
{
    CheckStep step;
    const QString advice =
        QStringLiteral("install %1 of the series that Qt was built for (%2), with its libcrypto, "
                       "where the loader finds it")
            .arg(libraryName(facts.built_for), facts.built_for_text);
    if (!facts.is_supported) {
        step = makeStep("openssl", Severity::failure,
                        QStringLiteral("Qt finds no OpenSSL that fits: there is no https"), advice);
    } else if (seriesOf(facts.built_for) != seriesOf(facts.running)) {
        step = makeStep("openssl", Severity::warning,
                        QStringLiteral("%1 is in use, and Qt was built for %2")
                            .arg(facts.running_text, facts.built_for_text),
                        advice);
    } else {
        step = makeStep("openssl", Severity::ok,
                        QStringLiteral("%1 (Qt was built for %2)")
                            .arg(facts.running_text, facts.built_for_text));
    }
    step.facts["built_for"] = facts.built_for_text.toStdString();
    step.facts["running"] = facts.running_text.toStdString();
    return step;
}

CheckStep judgeProxy(const ProxyFacts& facts)
{
    CheckStep step = makeStep(
        "proxy", Severity::warning,
        QStringLiteral("the driver goes through the %1 proxy %2")
            .arg(facts.is_http ? QStringLiteral("HTTP") : QStringLiteral("SOCKS"),
                 proxyText(facts)),
        QStringLiteral("if that is not meant: Qt takes the proxy from the host's environment "
                       "(https_proxy, http_proxy, all_proxy; no_proxy names exceptions)"));
    step.facts["proxy"] = proxyText(facts).toStdString();
    return step;
}

CheckStep judgeName(const NameFacts& facts, double timeout)
{
    CheckStep step;
    if (facts.is_address) {
        step = makeStep("name", Severity::ok, QStringLiteral("is an address, nothing to look up"));
    } else if (facts.end == ProbeEnd::done) {
        step = makeStep("name", Severity::ok, facts.addresses.join(QStringLiteral(", ")));
    } else if (facts.end == ProbeEnd::interrupted) {
        step = makeStep("name", Severity::failure, QStringLiteral("interrupted"));
    } else if (facts.end == ProbeEnd::timed_out) {
        step =
            makeStep("name", Severity::failure, waitedText(timeout),
                     QStringLiteral("look at this machine's name service: resolv.conf, network"));
    } else {
        step = makeStep("name", Severity::failure,
                        withReason(QStringLiteral("is not found"), facts.reason),
                        QStringLiteral("correct the address of the service, or this machine's name "
                                       "service"));
    }
    step.subject = facts.host;
    if (!facts.is_address)
        step.seconds = facts.seconds;
    step.facts["addresses"] = nlohmann::ordered_json::array();
    for (const QString& address : facts.addresses)
        step.facts["addresses"].push_back(address.toStdString());
    return step;
}

CheckSteps judgeConnections(const QVector<ConnectFacts>& facts, double timeout)
{
    bool is_any_connected = false;
    for (const ConnectFacts& one : facts)
        is_any_connected = is_any_connected || one.end == ProbeEnd::done;
    CheckSteps steps;
    for (const ConnectFacts& one : facts) {
        CheckStep step = makeStep("connect", Severity::ok, connectText(one, timeout));
        if (one.end != ProbeEnd::done) {
            step.severity = is_any_connected ? Severity::warning : Severity::failure;
            if (one.end != ProbeEnd::interrupted)
                step.advice = connectAdvice(one.end);
        }
        step.subject = QStringLiteral("%1 port %2").arg(one.address).arg(one.port);
        step.seconds = one.seconds;
        step.facts["address"] = one.address.toStdString();
        step.facts["port"] = one.port;
        step.facts["end"] = end_names[int(one.end)];
        steps << step;
    }
    return steps;
}

namespace {

/// What a handshake that failed says, given what the port speaks instead.
void explainFailedHandshake(const TlsFacts& facts, double timeout, CheckStep* step)
{
    step->severity = Severity::failure;
    if (facts.end == ProbeEnd::interrupted) {
        step->text = QStringLiteral("interrupted");
    } else if (facts.protocol == Protocol::http) {
        step->text = QStringLiteral("the port speaks plain HTTP, not TLS");
        step->advice = QStringLiteral("begin the address with http://, or use the port for https");
    } else if (facts.protocol == Protocol::other) {
        step->text = QStringLiteral("the port speaks something that is neither TLS nor HTTP");
        step->advice = QStringLiteral("correct the port in the address of the service");
    } else if (facts.end == ProbeEnd::timed_out) {
        step->text =
            QStringLiteral("the port takes the connection and says nothing for %1 s").arg(timeout);
        step->advice = QStringLiteral("look at the service, or at what stands before it; the "
                                      "driver waits without a time-out, and serves its first "
                                      "values with status 0 meanwhile");
    } else {
        step->text = QStringLiteral("the handshake failed: %1").arg(facts.reason);
        step->advice = QStringLiteral("see whether the port is one for https, and which versions "
                                      "of TLS the service allows");
    }
}

std::string isoDay(const QDateTime& time)
{
    return time.toUTC().toString(Qt::ISODate).toStdString();
}

QString dayText(const QDateTime& time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-dd"));
}

} // namespace

CheckStep judgeHandshake(const TlsFacts& facts, double timeout)
{
    CheckStep step = makeStep("tls", Severity::ok, QString());
    step.seconds = facts.seconds;
    if (facts.end != ProbeEnd::done) {
        explainFailedHandshake(facts, timeout, &step);
        return step;
    }
    step.text = QStringLiteral("%1, %2").arg(facts.version, facts.cipher);
    step.facts["protocol"] = facts.version.toStdString();
    step.facts["cipher"] = facts.cipher.toStdString();
    return step;
}

CheckStep judgeResumption(bool is_resumed)
{
    CheckStep step = makeStep(
        "resumption", Severity::ok,
        is_resumed ? QStringLiteral("each connection resumes the TLS session of the one before")
                   : QStringLiteral("the service resumes no TLS session: each connection costs a "
                                    "full handshake"));
    step.facts["resumed"] = is_resumed;
    return step;
}

CheckStep judgeCertificate(const CertificateFacts& facts, const QDateTime& now)
{
    QStringList complaints = facts.complaints;
    // Told by themselves, as Qt stops at the first objection to a chain.
    const bool is_named = complaints.join(QLatin1Char(' ')).contains(QLatin1String("expired"));
    if (facts.valid_until < now && !is_named)
        complaints << QStringLiteral("The certificate has expired");
    QString text = QStringLiteral("%1, issued by %2, valid from %3 to %4, key %5")
                       .arg(facts.subject, facts.issuer, dayText(facts.valid_from),
                            dayText(facts.valid_until), facts.key);
    if (!facts.names.isEmpty())
        text += QStringLiteral(", for %1").arg(facts.names.join(QStringLiteral(", ")));
    CheckStep step = makeStep("certificate", Severity::ok, text);
    if (!complaints.isEmpty()) {
        step.severity = Severity::warning;
        step.cause = complaints.join(QStringLiteral("; "));
        step.text = QStringLiteral("%1 [%2]").arg(step.cause, text);
        step.advice = QStringLiteral("the driver does not verify certificates, so values come all "
                                     "the same; but nobody knows who sends them");
    }
    step.facts["subject"] = facts.subject.toStdString();
    step.facts["issuer"] = facts.issuer.toStdString();
    step.facts["valid_from"] = isoDay(facts.valid_from);
    step.facts["valid_until"] = isoDay(facts.valid_until);
    step.facts["key"] = facts.key.toStdString();
    step.facts["self_signed"] = facts.is_self_signed;
    step.facts["names"] = nlohmann::ordered_json::array();
    for (const QString& name : facts.names)
        step.facts["names"].push_back(name.toStdString());
    step.facts["complaints"] = nlohmann::ordered_json::array();
    for (const QString& complaint : complaints)
        step.facts["complaints"].push_back(complaint.toStdString());
    return step;
}

CheckStep judgePlainHttp(const TlsFacts& facts, double timeout)
{
    CheckStep step = makeStep("http", Severity::warning, QString());
    step.seconds = facts.seconds;
    if (facts.end == ProbeEnd::interrupted) {
        step.severity = Severity::failure;
        step.text = QStringLiteral("interrupted");
    } else if (facts.protocol == Protocol::tls) {
        step.severity = Severity::failure;
        step.text = QStringLiteral("the port speaks TLS, and the address begins with http://");
        step.advice = QStringLiteral("begin the address with https://");
    } else if (facts.protocol == Protocol::http) {
        step.text = QStringLiteral("plain HTTP: password and values are not encrypted");
        step.advice = QStringLiteral("use https where the service offers it");
    } else if (facts.protocol == Protocol::other) {
        step.severity = Severity::failure;
        step.text = QStringLiteral("the port speaks something that is neither HTTP nor TLS");
        step.advice = QStringLiteral("correct the port in the address of the service");
    } else {
        // It may still answer what it knows: the login tells.
        step.text = facts.end == ProbeEnd::timed_out
                        ? QStringLiteral("no answer to a request for / within %1 s").arg(timeout)
                        : QStringLiteral("no answer to a request for /: %1").arg(facts.reason);
    }
    return step;
}

} // namespace tovik_host::check
