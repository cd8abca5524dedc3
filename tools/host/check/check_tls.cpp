#include "tools/host/check/check_way.h"

namespace tovik_host::check {

namespace {

/// What a handshake that failed says, given what the port speaks instead.
void explainFailedHandshake(const TlsFacts& facts, double timeout, CheckStep* step)
{
    step->judgement = Judgement::failure;
    if (facts.end == ProbeEnd::interrupted) {
        step->text = QStringLiteral("interrupted");
    } else if (facts.spoken == Spoken::http) {
        step->text = QStringLiteral("the port speaks plain HTTP, not TLS");
        step->advice = QStringLiteral("begin the address with http://, or use the port for https");
    } else if (facts.spoken == Spoken::other) {
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
    CheckStep step = makeStep("tls", Judgement::ok, QString());
    step.seconds = facts.seconds;
    if (facts.end != ProbeEnd::done) {
        explainFailedHandshake(facts, timeout, &step);
        return step;
    }
    step.text = QStringLiteral("%1, %2").arg(facts.protocol, facts.cipher);
    step.facts["protocol"] = facts.protocol.toStdString();
    step.facts["cipher"] = facts.cipher.toStdString();
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
    CheckStep step = makeStep("certificate", Judgement::ok, text);
    if (!complaints.isEmpty()) {
        step.judgement = Judgement::warning;
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
    CheckStep step = makeStep("http", Judgement::warning, QString());
    step.seconds = facts.seconds;
    if (facts.end == ProbeEnd::interrupted) {
        step.judgement = Judgement::failure;
        step.text = QStringLiteral("interrupted");
    } else if (facts.spoken == Spoken::tls) {
        step.judgement = Judgement::failure;
        step.text = QStringLiteral("the port speaks TLS, and the address begins with http://");
        step.advice = QStringLiteral("begin the address with https://");
    } else if (facts.spoken == Spoken::http) {
        step.text = QStringLiteral("plain HTTP: password and values are not encrypted");
        step.advice = QStringLiteral("use https where the service offers it");
    } else if (facts.spoken == Spoken::other) {
        step.judgement = Judgement::failure;
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
