#include "tools/host/check/check_items.h"

#include "tools/host/terminal/text_width.h"
#include "tools/host/value/status_text.h"

#include "cloud/driver_status.h"
#include "property/property_tovik_iot_group.h"

#include <algorithm>
#include <cmath>

namespace tovik_host::check {

namespace {

QString quoted(const QString& text)
{
    return QStringLiteral("\"%1\"").arg(text);
}

/// A single has no more digits than these.
QString valueText(const QVariant& value)
{
    const bool is_single = value.userType() == QMetaType::Float;
    return is_single ? QString::number(value.toDouble(), 'g', 7) : value.toString();
}

/// Codes of the simulated service; a real one may mean other things by them.
QString simulatedMeaning(int code)
{
    switch (code) {
    case 1:
        return QStringLiteral("no account has this e-mail address and password");
    case 3:
        return QStringLiteral("the account does not have this project");
    case 4:
        return QStringLiteral("the token is unknown or has expired");
    case 7:
        return QStringLiteral("there is no such group or data item");
    case 15:
        return QStringLiteral("the request is malformed");
    default:
        return QString();
    }
}

QString refusalText(int code)
{
    QString text = QStringLiteral("service error %1").arg(code);
    const QString meaning = simulatedMeaning(code);
    if (!meaning.isEmpty())
        text += QStringLiteral(" (by it tovik-cloud means: %1)").arg(meaning);
    return text + QStringLiteral("; %1").arg(hostStatusText(code));
}

QString failureText(const service::ClientOutcome& outcome)
{
    return outcome.isRefusal() ? refusalText(outcome.result) : outcome.reason;
}

QString failureAdvice(const service::ClientOutcome& outcome)
{
    switch (outcome.kind) {
    case service::ClientOutcome::TimedOut:
        return QStringLiteral("look at the service; the driver waits without a time-out");
    case service::ClientOutcome::BadReply:
        return QStringLiteral("see whether the address is that of the service's API, and not of a "
                              "web page or a proxy");
    case service::ClientOutcome::Failed:
        return outcome.result == 256
                   ? QStringLiteral("look at the service and the way to it")
                   : QStringLiteral("ask the service what its code %1 means").arg(outcome.result);
    default:
        return QString();
    }
}

/// Reads of items, where the service's answers are about the item.
QString itemAdvice(const ItemFinding& finding)
{
    if (finding.is_known || finding.outcome.kind != service::ClientOutcome::Failed)
        return failureAdvice(finding.outcome);
    return finding.suggestion.isEmpty()
               ? QStringLiteral("correct the id, or remove the item")
               : QStringLiteral("correct the id: %1").arg(finding.suggestion);
}

void judgeReadValue(const ItemFinding& finding, CheckStep* step)
{
    const QString type = QString::fromLatin1(finding.item.type->name);
    const bool is_other_type = finding.is_known && finding.catalogue_type != type;
    if (!finding.outcome.reason.isEmpty()) {
        step->severity = Severity::failure;
        step->text = finding.outcome.reason +
                     QStringLiteral("; the host keeps the item's first value, with status 0");
        step->advice = is_other_type
                           ? QStringLiteral("set the item's type to %1").arg(finding.catalogue_type)
                           : QStringLiteral("compare the item's type with what the service sends");
        return;
    }
    step->text = valueText(finding.value);
    if (is_other_type) {
        step->severity = Severity::warning;
        step->text += QStringLiteral("; of type %1 in the catalogue and %2 here")
                          .arg(finding.catalogue_type, type);
        step->advice =
            QStringLiteral("set the item's type to %1, unless the host wants other bytes")
                .arg(finding.catalogue_type);
    } else if (!finding.is_known) {
        step->severity = Severity::warning;
        step->text += QStringLiteral("; the service has it, and not in its catalogue");
        step->advice = QStringLiteral("ask the service why");
    }
}

} // namespace

QString hostStatusText(int result)
{
    const int status = driver_status::fromResult(result);
    if (status == 0) {
        return QStringLiteral(
            "the driver has no status for it: the host sees 0, as if all were well");
    }
    return QStringLiteral("the host gets status %1").arg(value::statusCode(status));
}

CatalogueItems itemsOf(const QList<PropertyTovikIotGroup>& groups)
{
    CatalogueItems items;
    for (const PropertyTovikIotGroup& group : groups) {
        for (const PropertyTovikIotDataItem& item : group.dataitems)
            items.insert(item.dataitem_id, {item.dataitem_id, item.name, item.type, group.name});
    }
    return items;
}

ItemFinding lookUpItem(const config::ItemConfig& item, const CatalogueItems& catalogue)
{
    ItemFinding finding;
    finding.item = item;
    const auto found = catalogue.constFind(item.id);
    finding.is_known = found != catalogue.constEnd();
    if (finding.is_known) {
        finding.catalogue_type = found->type;
        return finding;
    }
    int best = -1;
    for (const CatalogueEntry& other : catalogue) {
        // Somebody may have written the name where the id belongs.
        const bool is_name = other.name == item.id;
        if (!is_name && !terminal::isNear(item.id, other.id))
            continue;
        const int distance = is_name ? 0 : terminal::editDistance(item.id, other.id);
        if (best >= 0 && (distance > best || (distance == best && !is_name)))
            continue;
        best = distance;
        finding.suggestion = QStringLiteral("the catalogue has %1 (%2, %3)")
                                 .arg(quoted(other.id), other.name, other.type);
    }
    return finding;
}

CheckStep judgeConversation(const char* name, const service::ClientOutcome& outcome)
{
    CheckStep step = makeStep(name, Severity::ok, QStringLiteral("accepted"));
    step.seconds = outcome.seconds;
    if (outcome.kind != service::ClientOutcome::Done) {
        step.severity = Severity::failure;
        step.text = failureText(outcome);
        const bool is_login = step.name == QLatin1String("login");
        step.advice =
            is_login && outcome.isRefusal() ? value::loginAdvice() : failureAdvice(outcome);
        step.facts["result"] = outcome.result;
    }
    return step;
}

CheckStep judgeCatalogue(const service::ClientOutcome& outcome,
                         const QList<PropertyTovikIotGroup>& groups)
{
    CheckStep step = judgeConversation("catalogue", outcome);
    int items = 0;
    for (const PropertyTovikIotGroup& group : groups)
        items += group.dataitems.size();
    if (step.severity == Severity::ok)
        step.text = QStringLiteral("%1 groups, %2 items").arg(groups.size()).arg(items);
    step.facts["groups"] = groups.size();
    step.facts["items"] = items;
    return step;
}

CheckStep judgeItem(const ItemFinding& finding)
{
    CheckStep step = makeStep("item", Severity::ok, QString());
    step.subject = finding.item.name;
    step.facts["id"] = finding.item.id.toStdString();
    step.facts["type"] = finding.item.type->name;
    if (!finding.is_read) {
        step.severity = Severity::not_tried;
        return step;
    }
    step.facts["in_catalogue"] = finding.is_known;
    if (finding.is_known)
        step.facts["catalogue_type"] = finding.catalogue_type.toStdString();
    step.seconds = finding.outcome.seconds;
    if (finding.outcome.kind == service::ClientOutcome::Done) {
        judgeReadValue(finding, &step);
        return step;
    }
    step.severity = Severity::failure;
    step.text = failureText(finding.outcome);
    if (!finding.is_known)
        step.text += QStringLiteral("; the catalogue has no item %1").arg(quoted(finding.item.id));
    step.advice = itemAdvice(finding);
    step.facts["result"] = finding.outcome.result;
    return step;
}

namespace {

const double cycle_period = 1;
/// A read that takes this long is worth naming.
const double slow_read = 0.5;
const int most_names = 5;

QString namesText(const QStringList& names)
{
    QString text = QStringList(names.mid(0, most_names)).join(QStringLiteral(", "));
    if (names.size() > most_names)
        text += QStringLiteral(" and %1 more").arg(names.size() - most_names);
    return text;
}

QString secondsText(double seconds)
{
    return QStringLiteral("%1 s").arg(seconds, 0, 'f', seconds < 10 ? 2 : 0);
}

/// The slowest items, with their times.
QStringList slowItems(QVector<ItemFinding> findings)
{
    std::stable_sort(findings.begin(), findings.end(), [](const auto& one, const auto& other) {
        return one.outcome.seconds > other.outcome.seconds;
    });
    QStringList slow;
    for (const ItemFinding& finding : findings) {
        if (finding.outcome.seconds >= slow_read) {
            slow << QStringLiteral("%1 %2").arg(finding.item.name,
                                                secondsText(finding.outcome.seconds));
        }
    }
    return slow;
}

bool endsCycle(const ItemFinding& finding)
{
    return finding.is_read && finding.outcome.kind != service::ClientOutcome::Done;
}

/// How many of the first \a count items the host gets a value for.
int arriving(const QVector<ItemFinding>& findings, int count)
{
    return int(std::count_if(findings.begin(), findings.begin() + count, [](const auto& finding) {
        return finding.is_read && finding.outcome.reason.isEmpty();
    }));
}

/// The cycle does not get past \a stop.
CheckStep judgeStoppedCycle(const QVector<ItemFinding>& findings, int stop)
{
    QStringList later;
    for (int i = stop + 1; i < findings.size(); ++i)
        later << findings.at(i).item.name;
    const ItemFinding& finding = findings.at(stop);
    const bool is_waiting = finding.outcome.kind == service::ClientOutcome::TimedOut;
    CheckStep step = makeStep("cycle", Severity::failure, QString());
    if (is_waiting) {
        step.text = QStringLiteral("waits at %1 for as long as the service does; values reach the "
                                   "host at the end of a cycle, so none does")
                        .arg(finding.item.name);
        step.advice = QStringLiteral("look at the service; if it is only slow, try a longer "
                                     "--timeout");
    } else {
        step.text = QStringLiteral("ends at %1 every time").arg(finding.item.name);
        step.text += later.isEmpty()
                         ? QStringLiteral("; it is the last item, and each time the connection is "
                                          "made anew")
                         : QStringLiteral("; without a value stay: %1").arg(namesText(later));
        step.advice = QStringLiteral("put %1 right, or remove it").arg(finding.item.name);
    }
    step.facts["arriving"] = is_waiting ? 0 : arriving(findings, stop);
    step.facts["ends_at"] = finding.item.name.toStdString();
    step.facts["without_value"] = nlohmann::ordered_json::array();
    for (const QString& name : later)
        step.facts["without_value"].push_back(name.toStdString());
    return step;
}

} // namespace

CheckStep judgeCycle(const QVector<ItemFinding>& findings, bool is_complete)
{
    const auto stop = std::find_if(findings.begin(), findings.end(), endsCycle);
    if (stop != findings.end() && stop->outcome.kind != service::ClientOutcome::Interrupted)
        return judgeStoppedCycle(findings, int(stop - findings.begin()));
    double sum = 0;
    for (const ItemFinding& finding : findings)
        sum += finding.outcome.seconds;
    // A value is asked for somewhere in a cycle, reaches the host at its end, and stays until the
    // end of the next one. That one starts with the driver's clock, at a whole second.
    const double period = std::max(std::ceil(sum / cycle_period), 1.0) * cycle_period;
    const double oldest = sum + period;
    CheckStep step = makeStep("cycle", Severity::ok, QString());
    step.text = QStringLiteral("%1 for %2 %3: values are up to %4 old")
                    .arg(secondsText(sum))
                    .arg(findings.size())
                    .arg(findings.size() == 1 ? QStringLiteral("item") : QStringLiteral("items"),
                         secondsText(oldest));
    if (!is_complete)
        step.text += QStringLiteral(", and older with the items that were left out");
    const QStringList slow = slowItems(findings);
    if (!slow.isEmpty())
        step.text += QStringLiteral("; slow: %1").arg(namesText(slow));
    if (sum > cycle_period) {
        step.severity = Severity::warning;
        step.advice = QStringLiteral("items are read one after the other: serve fewer of them, or "
                                     "see why the service takes its time");
    }
    step.seconds = sum;
    step.facts["arriving"] = arriving(findings, findings.size());
    step.facts["cycle_seconds"] = sum;
    step.facts["oldest_seconds"] = oldest;
    step.facts["items"] = findings.size();
    return step;
}

} // namespace tovik_host::check
