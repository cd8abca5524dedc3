#include "tools/host/cloud_outcome.h"

#include "cloud/service_message.h"

#include <QUrl>

namespace tovik_host {

namespace {

/// The text that stands in quotes behind \a start in the last line that begins so; Qt's debug
/// stream has put a backslash before quotes and backslashes in it.
QString quotedAfter(const QString& start, const QStringList& lines)
{
    QString found;
    for (const QString& line : lines) {
        if (!line.startsWith(start))
            continue;
        found = line.mid(start.size()).trimmed();
        if (found.startsWith(QLatin1Char('"')) && found.endsWith(QLatin1Char('"')))
            found = found.mid(1, found.size() - 2);
        found.replace(QStringLiteral("\\\""), QStringLiteral("\""));
        found.replace(QStringLiteral("\\\\"), QStringLiteral("\\"));
    }
    return found;
}

/// "Login: no errorcode" of "[TOVIK IoT] Login Error: no errorcode!", the last of the lines.
QString complaintIn(const QStringList& lines)
{
    const QString start = QStringLiteral("[TOVIK IoT] ");
    const QString middle = QStringLiteral(" Error: ");
    QString found;
    for (const QString& line : lines) {
        if (!line.startsWith(start) || !line.contains(middle))
            continue;
        found = line.mid(start.size()).trimmed();
        found.replace(middle, QStringLiteral(": "));
        if (found.endsWith(QLatin1Char('!')))
            found.chop(1);
    }
    return found;
}

} // namespace

ClientOutcome judgeStep(int result, bool raised, const QStringList& lines)
{
    ClientOutcome outcome;
    outcome.result = raised ? int(service::client_failure) : result;
    if (raised) {
        outcome.kind = ClientOutcome::BadReply;
        outcome.reason = QStringLiteral("the reply, or an entry of the list in it, is no JSON "
                                        "object; such a reply ends a host that runs the driver");
        return outcome;
    }
    if (result == service::success)
        return outcome;
    outcome.kind = ClientOutcome::Failed;
    if (result != service::client_failure) {
        outcome.reason = QStringLiteral("the service refused with its error code %1").arg(result);
        return outcome;
    }
    outcome.reason = quotedAfter(QStringLiteral("[TOVIK IoT] Post Request Error: "), lines);
    if (!outcome.reason.isEmpty())
        return outcome;
    outcome.kind = ClientOutcome::BadReply;
    const QString complaint = complaintIn(lines);
    outcome.reason = complaint.isEmpty()
                         ? QStringLiteral("the reply is not understood: the token is empty")
                         : QStringLiteral("the reply is not understood: %1").arg(complaint);
    return outcome;
}

QString withoutUserInfo(const QString& text, const QString& url)
{
    const QUrl parsed(url);
    QString shown = text;
    if (parsed.userInfo().isEmpty())
        return shown;
    for (const auto form : {QUrl::FullyEncoded, QUrl::PrettyDecoded, QUrl::FullyDecoded}) {
        const QString user = parsed.userName(form);
        shown.remove(user + QLatin1Char(':') + parsed.password(form) + QLatin1Char('@'));
        shown.replace(QStringLiteral("//%1@").arg(user), QStringLiteral("//"));
    }
    return shown;
}

} // namespace tovik_host
