#include "tools/host/check/check_items.h"

#include <algorithm>
#include <cmath>

namespace tovik_host::check {

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
    QStringList behind;
    for (int i = stop + 1; i < findings.size(); ++i)
        behind << findings.at(i).item.name;
    const ItemFinding& finding = findings.at(stop);
    const bool is_waiting = finding.outcome.kind == service::ClientOutcome::TimedOut;
    CheckStep step = makeStep("cycle", Judgement::failure, QString());
    if (is_waiting) {
        step.text = QStringLiteral("waits at %1 for as long as the service does; values reach the "
                                   "host at the end of a cycle, so none does")
                        .arg(finding.item.name);
        step.advice = QStringLiteral("look at the service; if it is only slow, try a longer "
                                     "--timeout");
    } else {
        step.text = QStringLiteral("ends at %1 every time").arg(finding.item.name);
        step.text += behind.isEmpty()
                         ? QStringLiteral("; it is the last item, and each time the connection is "
                                          "made anew")
                         : QStringLiteral("; without a value stay: %1").arg(namesText(behind));
        step.advice = QStringLiteral("put %1 right, or remove it").arg(finding.item.name);
    }
    step.facts["arriving"] = is_waiting ? 0 : arriving(findings, stop);
    step.facts["ends_at"] = finding.item.name.toStdString();
    step.facts["without_value"] = nlohmann::ordered_json::array();
    for (const QString& name : behind)
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
    CheckStep step = makeStep("cycle", Judgement::ok, QString());
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
        step.judgement = Judgement::warning;
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
