#include "tools/host/check/judge.h"

#include "tools/host/value/status_text.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace tovik_host::check {

namespace {

/// A device that needs more of the time than this has none left for a bad day.
const double usual_share = 0.5;

QString millisecondsText(double seconds)
{
    return u"%1 ms"_s.arg(seconds * 1000, 0, 'f', 1);
}

/// \param holds a member of a read
template <typename Member>
int countOf(const QVector<LinkRead>& reads, Member holds)
{
    return int(std::count_if(reads.begin(), reads.end(), std::mem_fn(holds)));
}

QString stationsOf(const QVector<LinkRead>& reads)
{
    QStringList stations;
    for (const LinkRead& read : reads) {
        const QString station = QString::number(read.item.request.station);
        if (!stations.contains(station))
            stations << station;
    }
    return stations.size() == 1 ? u"station %1 answers"_s.arg(stations.first())
                                : u"stations %1 answer"_s.arg(stations.join(u", "_s));
}

} // namespace

CheckStep judgeOpening(const driver::DeviceConfig& config, const QString& problem, double seconds)
{
    CheckStep step = makeStep("link", problem.isEmpty() ? Severity::ok : Severity::failure,
                              problem.isEmpty() ? u"open"_s : problem);
    step.subject = driver::linkText(config.link);
    step.seconds = seconds;
    if (!problem.isEmpty())
        step.advice = u"without a link nothing else can be well: set this right first"_s;
    return step;
}

CheckStep judgeLineSettings(const driver::DeviceConfig& config)
{
    const driver::LinkSettings& settings = config.settings;
    QString text = u"the driver waits %1 ms for an answer, %2 repeats, %3 ms before each request"_s
                       .arg(settings.response_timeout)
                       .arg(settings.retries)
                       .arg(settings.request_delay);
    CheckStep step = makeStep("settings", Severity::ok, text);
    step.facts["response_timeout"] = settings.response_timeout;
    step.facts["retries"] = settings.retries;
    if (const auto* serial = std::get_if<driver::SerialAddress>(&config.link)) {
        const int stop_bits = serial->stop_bits == STOP_1 ? 1 : 2;
        const int bits =
            int(serial->data_bits) + 1 + stop_bits + (serial->parity == PAR_NONE ? 0 : 1);
        const double character = double(bits) / double(serial->baud_rate);
        step.text += u"; a character takes %1, a hundred of them %2"_s.arg(
            millisecondsText(character), millisecondsText(100 * character));
        step.facts["character_seconds"] = character;
    }
    return step;
}

CheckStep judgeAnyAnswer(const driver::DeviceConfig& config, const QVector<LinkRead>& reads)
{
    CheckStep step = makeStep("answer");
    const int answers = countOf(reads, &LinkRead::hasAnswer);
    if (answers > 0)
        step.text = u"%1 of %2 requests are answered"_s.arg(answers).arg(reads.size());
    else if (countOf(reads, &LinkRead::has_sent) == 0)
        step.find(Severity::failure, u"nothing was asked: the driver sends no such request"_s,
                  u"correct the addresses; the steps of the items say why"_s);
    else
        step.find(
            Severity::failure, u"not a single byte comes back"_s,
            std::holds_alternative<driver::TcpAddress>(config.link)
                ? u"somebody takes connections there and is silent: is it the right port, the "
                  "right driver, the right station?"_s
                : u"in this order: is the device on; are A and B not exchanged; are speed and "
                  "frame those of the device; is the station number right; is it the right "
                  "driver?"_s);
    step.facts["answered"] = answers;
    return step;
}

CheckStep judgeStation(const QVector<LinkRead>& reads)
{
    CheckStep step = makeStep("station");
    const int good = countOf(reads, &LinkRead::isGood);
    step.facts["arriving"] = good;
    if (good > 0)
        step.text = stationsOf(reads) + u" with values"_s;
    else if (countOf(reads, &LinkRead::hasAnswer) == 0)
        step.severity = Severity::not_tried;
    else
        step.find(Severity::warning, stationsOf(reads) + u", and with no value"_s,
                  u"the steps of the items say what the driver makes of the answers; --trace shows "
                  "them byte by byte"_s);
    return step;
}

CheckStep judgeLinkItem(const LinkRead& read)
{
    CheckStep step = makeStep("item", Severity::ok, read.value);
    step.subject = read.item.name;
    if (!read.is_tried) {
        step.severity = Severity::not_tried;
        return step;
    }
    if (!read.isGood()) {
        step.severity = Severity::failure;
        step.text = read.problem;
    }
    step.facts["status"] = value::statusCode(read.status);
    step.facts["bytes"] = read.bytes;
    if (read.seconds > 0)
        step.seconds = read.seconds;
    return step;
}

CheckStep judgeTimes(const driver::DeviceConfig& config, const QVector<LinkRead>& reads)
{
    QVector<double> times;
    int stray_bytes = 0;
    for (const LinkRead& read : reads) {
        stray_bytes += read.stray_bytes;
        if (read.seconds > 0)
            times << read.seconds;
    }
    CheckStep step = makeStep("times");
    if (times.isEmpty()) {
        step.severity = Severity::not_tried;
        return step;
    }
    std::sort(times.begin(), times.end());
    const double limit = config.settings.response_timeout / 1000.0;
    const double longest = times.last();
    step.text =
        u"%1 answers took %2 to %3, usually %4, of the %5 that the driver waits"_s.arg(times.size())
            .arg(millisecondsText(times.first()), millisecondsText(longest),
                 millisecondsText(times.at(times.size() / 2)), millisecondsText(limit));
    step.facts["shortest"] = times.first();
    step.facts["longest"] = longest;
    step.facts["stray_bytes"] = stray_bytes;
    if (stray_bytes > 0) {
        step.severity = Severity::warning;
        step.cause = u"%1 bytes came too late, or unasked"_s.arg(stray_bytes);
        step.text = u"%1 [%2]"_s.arg(step.cause, step.text);
        step.advice =
            u"a longer --response-timeout; is there another master on the line, or noise?"_s;
    } else if (longest > usual_share * limit) {
        step.severity = Severity::warning;
        step.advice = u"leave room for a bad day: --response-timeout %1"_s.arg(
            int(std::ceil(3 * longest * 100)) * 10);
    }
    return step;
}

} // namespace tovik_host::check
