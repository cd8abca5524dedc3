#include "tools/host/check/judge.h"

#include "tools/host/terminal/text.h"
#include "tools/host/value/status_text.h"

#include "cloud/driver_status.h"

#include <algorithm>
#include <cmath>

namespace tovik_host::check {

namespace {

QString quoted(const QString& text)
{
    return u"\"%1\""_s.arg(text);
}

/// A single has no more digits than these.
QString valueText(const QVariant& value)
{
    const bool is_single = value.userType() == QMetaType::Float;
    return is_single ? QString::number(value.toDouble(), 'g', 7) : value.toString();
}

/// The status that a host gets for a client's \a result, in words: "the host gets status ...".
QString hostStatusText(int result)
{
    const int status = driver_status::fromResult(result);
    if (status == 0)
        return u"the driver has no status for it: the host sees 0, as if all were well"_s;
    return u"the host gets status %1"_s.arg(value::statusCode(status));
}

/// A code of the simulated service; a real one may mean other things by it.
struct Meaning
{
    int code;
    const char* text;
};

const Meaning meanings[] = {{1, "no account has this e-mail address and password"},
                            {3, "the account does not have this project"},
                            {4, "the token is unknown or has expired"},
                            {7, "there is no such group or data item"},
                            {15, "the request is malformed"}};

QString refusalText(int code)
{
    QString text = u"service error %1"_s.arg(code);
    for (const Meaning& meaning : meanings) {
        if (meaning.code == code)
            text += u" (by it tovik-cloud means: %1)"_s.arg(QLatin1String(meaning.text));
    }
    return text + u"; "_s + hostStatusText(code);
}

QString failureText(const service::ClientOutcome& outcome)
{
    return outcome.isRefusal() ? refusalText(outcome.result) : outcome.reason;
}

QString failureAdvice(const service::ClientOutcome& outcome)
{
    switch (outcome.kind) {
    case service::ClientOutcome::TimedOut:
        return u"look at the service; the driver waits without a time-out"_s;
    case service::ClientOutcome::BadReply:
        return u"see whether the address is that of the service's API, and not of a web page or a "
               "proxy"_s;
    case service::ClientOutcome::Failed:
        return outcome.result == 256
                   ? u"look at the service and the way to it"_s
                   : u"ask the service what its code %1 means"_s.arg(outcome.result);
    default:
        return QString();
    }
}

/// Reads of items, where the service's answers are about the item.
QString itemAdvice(const ItemFinding& finding)
{
    if (finding.is_known || finding.outcome.kind != service::ClientOutcome::Failed)
        return failureAdvice(finding.outcome);
    return finding.suggestion.isEmpty() ? u"correct the id, or remove the item"_s
                                        : u"correct the id: %1"_s.arg(finding.suggestion);
}

void judgeReadValue(const ItemFinding& finding, CheckStep* step)
{
    const QString type = QString::fromLatin1(finding.item.type->name);
    const bool is_other_type = finding.is_known && finding.catalogue_type != type;
    const QString value = valueText(finding.value);
    if (!finding.outcome.reason.isEmpty()) {
        step->find(Severity::failure,
                   finding.outcome.reason +
                       u"; the host keeps the item's first value, with status 0"_s,
                   is_other_type ? u"set the item's type to %1"_s.arg(finding.catalogue_type)
                                 : u"compare the item's type with what the service sends"_s);
    } else if (is_other_type) {
        step->find(Severity::warning,
                   value + u"; of type %1 in the catalogue and %2 here"_s.arg(
                               finding.catalogue_type, type),
                   u"set the item's type to %1, unless the host wants other bytes"_s.arg(
                       finding.catalogue_type));
    } else if (!finding.is_known) {
        step->find(Severity::warning, value + u"; the service has it, and not in its catalogue"_s,
                   u"ask the service why"_s);
    } else {
        step->text = value;
    }
}

} // namespace

CatalogueItems itemsOf(const QList<PropertyTovikIotGroup>& groups)
{
    CatalogueItems items;
    for (const service::OfferedItem& item : service::offeredItems(groups))
        items.insert(item.id, item);
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
    for (const service::OfferedItem& other : catalogue) {
        // Somebody may have written the name where the id belongs.
        const bool is_name = other.name == item.id;
        if (!is_name && !terminal::isNear(item.id, other.id))
            continue;
        const int distance = is_name ? 0 : terminal::editDistance(item.id, other.id);
        if (best >= 0 && (distance > best || (distance == best && !is_name)))
            continue;
        best = distance;
        finding.suggestion =
            u"the catalogue has %1 (%2, %3)"_s.arg(quoted(other.id), other.name, other.type);
    }
    return finding;
}

CheckStep judgeConversation(const char* name, const service::ClientOutcome& outcome)
{
    CheckStep step = makeStep(name, Severity::ok, u"accepted"_s);
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
        step.text = u"%1 groups, %2 items"_s.arg(groups.size()).arg(items);
    step.facts["groups"] = groups.size();
    step.facts["items"] = items;
    return step;
}

CheckStep judgeItem(const ItemFinding& finding)
{
    CheckStep step = makeStep("item");
    step.subject = finding.item.name;
    step.facts["id"] = finding.item.id;
    step.facts["type"] = finding.item.type->name;
    if (!finding.is_read) {
        step.severity = Severity::not_tried;
        return step;
    }
    step.facts["in_catalogue"] = finding.is_known;
    if (finding.is_known)
        step.facts["catalogue_type"] = finding.catalogue_type;
    step.seconds = finding.outcome.seconds;
    if (finding.outcome.kind == service::ClientOutcome::Done) {
        judgeReadValue(finding, &step);
        return step;
    }
    step.severity = Severity::failure;
    step.text = failureText(finding.outcome);
    if (!finding.is_known)
        step.text += u"; the catalogue has no item %1"_s.arg(quoted(finding.item.id));
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
    QString text = QStringList(names.mid(0, most_names)).join(u", "_s);
    if (names.size() > most_names)
        text += u" and %1 more"_s.arg(names.size() - most_names);
    return text;
}

QString secondsText(double seconds)
{
    return u"%1 s"_s.arg(seconds, 0, 'f', seconds < 10 ? 2 : 0);
}

/// The slowest items, with their times.
QStringList slowItems(QVector<ItemFinding> findings)
{
    std::stable_sort(findings.begin(), findings.end(), [](const auto& one, const auto& other) {
        return one.outcome.seconds > other.outcome.seconds;
    });
    QStringList slow;
    for (const ItemFinding& finding : findings) {
        if (finding.outcome.seconds >= slow_read)
            slow << u"%1 %2"_s.arg(finding.item.name, secondsText(finding.outcome.seconds));
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
    CheckStep step = makeStep("cycle", Severity::failure);
    if (is_waiting) {
        step.text =
            u"waits at %1 for as long as the service does; values reach the host at the end of a "
            "cycle, so none does"_s.arg(finding.item.name);
        step.advice = u"look at the service; if it is only slow, try a longer --timeout"_s;
    } else {
        step.text = u"ends at %1 every time"_s.arg(finding.item.name);
        step.text += later.isEmpty()
                         ? u"; it is the last item, and each time the connection is made anew"_s
                         : u"; without a value stay: %1"_s.arg(namesText(later));
        step.advice = u"put %1 right, or remove it"_s.arg(finding.item.name);
    }
    step.facts["arriving"] = is_waiting ? 0 : arriving(findings, stop);
    step.facts["ends_at"] = finding.item.name;
    step.facts["without_value"] = later;
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
    CheckStep step = makeStep("cycle");
    step.text = u"%1 for %2 %3: values are up to %4 old"_s.arg(secondsText(sum))
                    .arg(findings.size())
                    .arg(findings.size() == 1 ? u"item"_s : u"items"_s, secondsText(oldest));
    if (!is_complete)
        step.text += u", and older with the items that were left out"_s;
    const QStringList slow = slowItems(findings);
    if (!slow.isEmpty())
        step.text += u"; slow: %1"_s.arg(namesText(slow));
    if (sum > cycle_period) {
        step.severity = Severity::warning;
        step.advice =
            u"items are read one after the other: serve fewer of them, or see why the service "
            "takes its time"_s;
    }
    step.seconds = sum;
    step.facts["arriving"] = arriving(findings, findings.size());
    step.facts["cycle_seconds"] = sum;
    step.facts["oldest_seconds"] = oldest;
    step.facts["items"] = findings.size();
    return step;
}

} // namespace tovik_host::check
