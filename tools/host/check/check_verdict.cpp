#include "tools/host/check/judge.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"
#include "tools/host/value/json_text.h"

#include <algorithm>
#include <cmath>

namespace tovik_host::check {

namespace {

QString markOf(Severity severity)
{
    switch (severity) {
    case Severity::ok:
        return u"ok"_s;
    case Severity::warning:
        return u"warn"_s;
    case Severity::failure:
        return u"FAIL"_s;
    case Severity::not_tried:
        break;
    }
    return u"--"_s;
}

QString placeOf(const CheckStep& step)
{
    return step.subject.isEmpty() ? step.name : step.name + u' ' + step.subject;
}

int countOf(const CheckSteps& steps, Severity severity)
{
    return int(std::count_if(steps.begin(), steps.end(), [severity](const CheckStep& step) {
        return step.severity == severity;
    }));
}

/// How many values arrive all the same, by the step that looks at the whole cycle.
int arriving(const CheckSteps& steps)
{
    for (const CheckStep& step : steps) {
        if (step.facts.contains("arriving"))
            return step.facts.at("arriving").get<int>();
    }
    return 0;
}

QString countText(int count, const char* one, const char* more)
{
    return u"%1 %2"_s.arg(count).arg(QLatin1String(count == 1 ? one : more));
}

QString summaryOf(const CheckSteps& steps)
{
    const int warnings = countOf(steps, Severity::warning);
    if (countOf(steps, Severity::failure) > 0)
        return arriving(steps) > 0 ? u"not every value arrives"_s : u"no value arrives"_s;
    if (warnings == 0)
        return u"all is well, every value arrives"_s;
    return u"every value arrives, with %1"_s.arg(countText(warnings, "warning", "warnings"));
}

} // namespace

Verdict judgeAll(const CheckSteps& steps, bool is_interrupted)
{
    Verdict verdict;
    for (const Severity wanted : {Severity::failure, Severity::warning}) {
        for (const CheckStep& step : steps) {
            if (step.severity == wanted)
                verdict.causes << Cause{
                    u"%1: %2"_s.arg(placeOf(step), step.cause.isEmpty() ? step.text : step.cause),
                    step.advice};
        }
    }
    if (is_interrupted) {
        verdict.is_well = false;
        verdict.summary = u"interrupted, nothing is proved"_s;
        return verdict;
    }
    verdict.is_well = countOf(steps, Severity::failure) == 0;
    verdict.summary = summaryOf(steps);
    return verdict;
}

int tellVerdict(terminal::Streams& streams, const Verdict& verdict, bool as_json)
{
    for (const QString& line : verdictLines(verdict, as_json))
        streams.out.line(line);
    return streams.codeAfterWriting(verdict.is_well ? terminal::exitDone : terminal::exitRefused);
}

QString stepLine(const CheckStep& step, bool as_json)
{
    const QString text = step.severity == Severity::not_tried ? u"not tried"_s : step.text;
    if (!as_json) {
        QString line = u"%1  %2  "_s.arg(markOf(step.severity), -4).arg(step.name, -11);
        if (!step.subject.isEmpty())
            line += step.subject + u": "_s;
        line += text;
        if (step.seconds)
            line += u"  (%1 ms)"_s.arg(std::lround(*step.seconds * 1000));
        return terminal::printable(line);
    }
    value::OrderedJson line = value::jsonReport("step");
    line["step"] = step.name;
    if (!step.subject.isEmpty())
        line["subject"] = step.subject;
    line["judgement"] =
        step.severity == Severity::not_tried ? u"not tried"_s : markOf(step.severity).toLower();
    line["text"] = text;
    if (!step.advice.isEmpty())
        line["advice"] = step.advice;
    if (step.seconds)
        line["seconds"] = *step.seconds;
    if (!step.facts.empty())
        line["facts"] = step.facts;
    return value::jsonLine(line);
}

QStringList verdictLines(const Verdict& verdict, bool as_json)
{
    if (as_json) {
        value::OrderedJson line = value::jsonReport("verdict");
        line["well"] = verdict.is_well;
        line["text"] = verdict.summary;
        line["causes"] = value::OrderedJson::array();
        for (const Cause& cause : verdict.causes) {
            value::OrderedJson one;
            one["found"] = cause.found;
            if (!cause.advice.isEmpty())
                one["advice"] = cause.advice;
            line["causes"].push_back(one);
        }
        return {value::jsonLine(line)};
    }
    QStringList lines = {QString(), terminal::printable(u"Verdict: "_s + verdict.summary + u'.')};
    for (const Cause& cause : verdict.causes) {
        lines << terminal::printable(u"  - "_s + cause.found);
        if (!cause.advice.isEmpty())
            lines << terminal::printable(u"    What to do: "_s + cause.advice);
    }
    return lines;
}

} // namespace tovik_host::check
