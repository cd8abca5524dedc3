#include "tests/reliability/soak/judge.h"

#include <QString>

#include <algorithm>

namespace {

using Samples = std::vector<SoakSample>;
using Reading = double (*)(const SoakSample&);

const double longest_warm_up = 300;
const std::size_t fewest_samples = 120;

double least(Samples::const_iterator begin, Samples::const_iterator end, Reading read)
{
    double found = read(*begin);
    for (auto sample = begin; sample != end; ++sample)
        found = std::min(found, read(*sample));
    return found;
}

Rise riseOf(const Samples& samples, Reading read)
{
    const auto quarter = static_cast<std::ptrdiff_t>(samples.size() / 4);
    Rise rise;
    rise.from = least(samples.begin(), samples.begin() + quarter, read);
    rise.to = least(samples.end() - quarter, samples.end(), read);
    for (const SoakSample& sample : samples)
        rise.most = std::max(rise.most, read(sample));
    return rise;
}

void complainIf(bool wrong, SoakVerdict* verdict, const char* what, double is, double ceiling)
{
    if (!wrong)
        return;
    // QString, for its point does not follow the locale.
    verdict->complaints.push_back(QStringLiteral("%1: %2, the ceiling is %3")
                                      .arg(QLatin1String(what))
                                      .arg(is, 0, 'f', 1)
                                      .arg(ceiling, 0, 'f', 1)
                                      .toStdString());
}

/// No more at any time than \a most, and no more left at the end than at the beginning.
void judgeCount(const Rise& rise, double most, const char* what, const char* what_rose,
                SoakVerdict* verdict)
{
    complainIf(rise.most > most, verdict, what, rise.most, most);
    complainIf(rise.by() > 0, verdict, what_rose, rise.to, rise.from);
}

/// Of what a client that polls has more of.
Rise riseOfPolling(const Samples& samples, Reading read)
{
    Samples polling;
    std::copy_if(samples.begin(), samples.end(), std::back_inserter(polling),
                 [](const SoakSample& sample) { return sample.is_polling; });
    Rise rise = riseOf(samples, read);
    if (polling.size() >= fewest_samples) {
        const double most = rise.most;
        rise = riseOf(polling, read);
        rise.most = most;
    }
    return rise;
}

void judgeTimers(const Samples& samples, int kept, SoakVerdict* verdict)
{
    // The reconnect timer, the monitor timer, and those of the connections before, as far as kept.
    for (const SoakSample& sample : samples) {
        const int most = std::min(sample.reconnects, kept) + 2;
        if (sample.timers > most) {
            complainIf(true, verdict, "timers of the client", sample.timers, most);
            return;
        }
    }
}

} // namespace

SoakVerdict judge(const Samples& all, const SoakCeilings& ceilings)
{
    SoakVerdict verdict;
    if (!all.empty())
        verdict.warm_up_seconds = std::min(longest_warm_up, all.back().seconds / 5);
    Samples samples;
    std::copy_if(
        all.begin(), all.end(), std::back_inserter(samples),
        [&](const SoakSample& sample) { return sample.seconds >= verdict.warm_up_seconds; });
    judgeTimers(samples, ceilings.kept_timers, &verdict);
    verdict.is_too_short = samples.size() < fewest_samples;
    if (verdict.is_too_short)
        return verdict;
    verdict.resident_kib =
        riseOf(samples, [](const SoakSample& s) { return double(s.facts.resident_kib); });
    verdict.heap_kib =
        riseOf(samples, [](const SoakSample& s) { return double(s.facts.heap_kib); });
    verdict.descriptors =
        riseOfPolling(samples, [](const SoakSample& s) { return double(s.facts.descriptors); });
    verdict.threads =
        riseOfPolling(samples, [](const SoakSample& s) { return double(s.facts.threads); });
    verdict.timers = riseOf(samples, [](const SoakSample& s) { return double(s.timers); });
    verdict.reconnects = samples.back().reconnects - samples.front().reconnects;

    const double of_reconnects =
        std::min(verdict.reconnects, ceilings.kept_timers) * ceilings.kib_per_reconnect;
    const double heap = of_reconnects + ceilings.heap_slack_kib;
    const double resident = of_reconnects + ceilings.resident_slack_kib;
    complainIf(verdict.heap_kib.by() > heap, &verdict, "rise of the heap in use, KiB",
               verdict.heap_kib.by(), heap);
    complainIf(verdict.resident_kib.by() > resident, &verdict, "rise of resident memory, KiB",
               verdict.resident_kib.by(), resident);
    judgeCount(verdict.descriptors, ceilings.descriptors, "descriptors",
               "descriptors between requests have risen", &verdict);
    judgeCount(verdict.threads, ceilings.threads, "threads", "threads between requests have risen",
               &verdict);
    return verdict;
}
