#include "tools/host/check/judge.h"

#include "cloud/error_handling.h"

#include <algorithm>

namespace tovik_host::check {

namespace {

/// How a connection ended, for programs and people, and what to do about it.
struct EndText
{
    const char* name;
    const char* text;
    const char* advice;
};

/// In the order of ProbeEnd.
const EndText ends[] = {
    {"done", "connected", ""},
    {"refused", "refused: nobody listens on this port, or a firewall says no",
     "see whether the service runs, and on this port"},
    {"unreachable", "no way to this address",
     "look at this machine's network: cable, address, route"},
    {"timed out", "",
     "look for a firewall that swallows packets, or a machine that is off; the driver waits as "
     "long as the system tries"},
    {"failed", "failed", "look at the network between here and the service"},
    {"interrupted", "interrupted", ""},
};

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
        return u"libssl.so.%1"_s.arg(major);
    return u"libssl.so.%1.%2"_s.arg(major).arg((version >> 20) & 0xFF);
}

QString proxyText(const ProxyFacts& facts)
{
    return u"%1:%2"_s.arg(facts.host).arg(facts.port);
}

QString withReason(const QString& text, const QString& reason)
{
    return reason.isEmpty() ? text : u"%1: %2"_s.arg(text, reason);
}

QString waitedText(double timeout)
{
    return u"no answer within %1 s"_s.arg(timeout);
}

QString connectText(const ConnectFacts& facts, double timeout)
{
    if (facts.end == ProbeEnd::timed_out)
        return waitedText(timeout);
    const QString text = QLatin1String(ends[int(facts.end)].text);
    const bool has_reason = facts.end == ProbeEnd::unreachable || facts.end == ProbeEnd::failed;
    return has_reason ? withReason(text, facts.reason) : text;
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
        const QString every = settings.type == 1
                                  ? u"reconnects every %1 s"_s.arg(settings.return_time)
                                  : u"reconnects every second"_s;
        return makeStep("settings", Severity::ok, every);
    }
    if (handling.reconnectsByReads()) {
        return makeStep(
            "settings", Severity::ok,
            u"reconnects when the host reads: every second read in an error tries once"_s);
    }
    return makeStep(
        "settings", Severity::warning,
        u"never reconnects: after the first error no value comes until the host is started anew"_s,
        u"set error_handling.return_time_enabled, or another type"_s);
}

CheckStep judgeSslLibrary(const SslLibraryFacts& facts)
{
    CheckStep step = makeStep("openssl");
    const QString& running = facts.running_text;
    const QString& built_for = facts.built_for_text;
    const QString advice =
        u"install %1 of the series that Qt was built for (%2), with its libcrypto, where the "
        "loader finds it"_s.arg(libraryName(facts.built_for), built_for);
    if (!facts.is_supported)
        step.find(Severity::failure, u"Qt finds no OpenSSL that fits: there is no https"_s, advice);
    else if (seriesOf(facts.built_for) != seriesOf(facts.running))
        step.find(Severity::warning,
                  u"%1 is in use, and Qt was built for %2"_s.arg(running, built_for), advice);
    else
        step.find(Severity::ok, u"%1 (Qt was built for %2)"_s.arg(running, built_for));
    step.facts["built_for"] = built_for;
    step.facts["running"] = running;
    return step;
}

CheckStep judgeProxy(const ProxyFacts& facts)
{
    CheckStep step = makeStep(
        "proxy", Severity::warning,
        u"the driver goes through the %1 proxy %2"_s.arg(facts.is_http ? u"HTTP"_s : u"SOCKS"_s,
                                                         proxyText(facts)),
        u"if that is not meant: Qt takes the proxy from the host's environment (https_proxy, "
        "http_proxy, all_proxy; no_proxy names exceptions)"_s);
    step.facts["proxy"] = proxyText(facts);
    return step;
}

CheckStep judgeName(const NameFacts& facts, double timeout)
{
    CheckStep step = makeStep("name");
    if (facts.is_address) {
        step.find(Severity::ok, u"is an address, nothing to look up"_s);
    } else if (facts.end == ProbeEnd::done) {
        step.find(Severity::ok, facts.addresses.join(u", "_s));
    } else if (facts.end == ProbeEnd::interrupted) {
        step.find(Severity::failure, u"interrupted"_s);
    } else if (facts.end == ProbeEnd::timed_out) {
        step.find(Severity::failure, waitedText(timeout),
                  u"look at this machine's name service: resolv.conf, network"_s);
    } else {
        step.find(Severity::failure, withReason(u"is not found"_s, facts.reason),
                  u"correct the address of the service, or this machine's name service"_s);
    }
    step.subject = facts.host;
    if (!facts.is_address)
        step.seconds = facts.seconds;
    step.facts["addresses"] = facts.addresses;
    return step;
}

CheckSteps judgeConnections(const QVector<ConnectFacts>& facts, double timeout)
{
    const bool is_any_connected =
        std::any_of(facts.begin(), facts.end(),
                    [](const ConnectFacts& one) { return one.end == ProbeEnd::done; });
    CheckSteps steps;
    for (const ConnectFacts& one : facts) {
        const bool is_connected = one.end == ProbeEnd::done;
        CheckStep step =
            makeStep("connect",
                     is_connected       ? Severity::ok
                     : is_any_connected ? Severity::warning
                                        : Severity::failure,
                     connectText(one, timeout), QLatin1String(ends[int(one.end)].advice));
        step.subject = u"%1 port %2"_s.arg(one.address).arg(one.port);
        step.seconds = one.seconds;
        step.facts["address"] = one.address;
        step.facts["port"] = one.port;
        step.facts["end"] = ends[int(one.end)].name;
        steps << step;
    }
    return steps;
}

namespace {

/// What a handshake that failed says, given what the port speaks instead.
void explainFailedHandshake(const TlsFacts& facts, double timeout, CheckStep* step)
{
    const auto fail = [step](const QString& text, const QString& advice = QString()) {
        step->find(Severity::failure, text, advice);
    };
    if (facts.end == ProbeEnd::interrupted)
        fail(u"interrupted"_s);
    else if (facts.protocol == Protocol::http)
        fail(u"the port speaks plain HTTP, not TLS"_s,
             u"begin the address with http://, or use the port for https"_s);
    else if (facts.protocol == Protocol::other)
        fail(u"the port speaks something that is neither TLS nor HTTP"_s,
             u"correct the port in the address of the service"_s);
    else if (facts.end == ProbeEnd::timed_out)
        fail(u"the port takes the connection and says nothing for %1 s"_s.arg(timeout),
             u"look at the service, or at what stands before it; the driver waits without a "
             "time-out, and serves its first values with status 0 meanwhile"_s);
    else
        fail(u"the handshake failed: %1"_s.arg(facts.reason),
             u"see whether the port is one for https, and which versions of TLS the service "
             "allows"_s);
}

QString isoDay(const QDateTime& time)
{
    return time.toUTC().toString(Qt::ISODate);
}

QString dayText(const QDateTime& time)
{
    return time.toUTC().toString(u"yyyy-MM-dd"_s);
}

} // namespace

CheckStep judgeHandshake(const TlsFacts& facts, double timeout)
{
    CheckStep step = makeStep("tls");
    step.seconds = facts.seconds;
    if (facts.end != ProbeEnd::done) {
        explainFailedHandshake(facts, timeout, &step);
        return step;
    }
    step.text = u"%1, %2"_s.arg(facts.version, facts.cipher);
    step.facts["protocol"] = facts.version;
    step.facts["cipher"] = facts.cipher;
    return step;
}

CheckStep judgeResumption(bool is_resumed)
{
    CheckStep step = makeStep(
        "resumption", Severity::ok,
        is_resumed
            ? u"each connection resumes the TLS session of the one before"_s
            : u"the service resumes no TLS session: each connection costs a full handshake"_s);
    step.facts["resumed"] = is_resumed;
    return step;
}

CheckStep judgeCertificate(const CertificateFacts& facts, const QDateTime& now)
{
    QStringList complaints = facts.complaints;
    // Told by themselves, as Qt stops at the first objection to a chain.
    const bool is_named = complaints.join(u' ').contains(QLatin1String("expired"));
    if (facts.valid_until < now && !is_named)
        complaints << u"The certificate has expired"_s;
    QString text = u"%1, issued by %2, valid from %3 to %4, key %5"_s.arg(
        facts.subject, facts.issuer, dayText(facts.valid_from), dayText(facts.valid_until),
        facts.key);
    if (!facts.names.isEmpty())
        text += u", for %1"_s.arg(facts.names.join(u", "_s));
    CheckStep step = makeStep("certificate", Severity::ok, text);
    if (!complaints.isEmpty()) {
        step.severity = Severity::warning;
        step.cause = complaints.join(u"; "_s);
        step.text = u"%1 [%2]"_s.arg(step.cause, text);
        step.advice =
            u"the driver does not verify certificates, so values come all the same; but nobody "
            "knows who sends them"_s;
    }
    step.facts["subject"] = facts.subject;
    step.facts["issuer"] = facts.issuer;
    step.facts["valid_from"] = isoDay(facts.valid_from);
    step.facts["valid_until"] = isoDay(facts.valid_until);
    step.facts["key"] = facts.key;
    step.facts["self_signed"] = facts.is_self_signed;
    step.facts["names"] = facts.names;
    step.facts["complaints"] = complaints;
    return step;
}

CheckStep judgePlainHttp(const TlsFacts& facts, double timeout)
{
    CheckStep step = makeStep("http");
    step.seconds = facts.seconds;
    if (facts.end == ProbeEnd::interrupted)
        step.find(Severity::failure, u"interrupted"_s);
    else if (facts.protocol == Protocol::tls)
        step.find(Severity::failure, u"the port speaks TLS, and the address begins with http://"_s,
                  u"begin the address with https://"_s);
    else if (facts.protocol == Protocol::http)
        step.find(Severity::warning, u"plain HTTP: password and values are not encrypted"_s,
                  u"use https where the service offers it"_s);
    else if (facts.protocol == Protocol::other)
        step.find(Severity::failure, u"the port speaks something that is neither HTTP nor TLS"_s,
                  u"correct the port in the address of the service"_s);
    else // It may still answer what it knows: the login tells.
        step.find(Severity::warning,
                  facts.end == ProbeEnd::timed_out
                      ? u"no answer to a request for / within %1 s"_s.arg(timeout)
                      : u"no answer to a request for /: %1"_s.arg(facts.reason));
    return step;
}

} // namespace tovik_host::check
