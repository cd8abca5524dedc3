#include "tools/host/check/check_step.h"

#include "tools/host/terminal/text_width.h"
#include "tools/host/value/json_text.h"

#include <cmath>

namespace tovik_host::check {

namespace {

const char* markOf(Severity severity)
{
    switch (severity) {
    case Severity::ok:
        return "ok";
    case Severity::warning:
        return "warn";
    case Severity::failure:
        return "FAIL";
    case Severity::not_tried:
        break;
    }
    return "--";
}

QString placeOf(const CheckStep& step)
{
    return step.subject.isEmpty() ? step.name : step.name + QLatin1Char(' ') + step.subject;
}

int countOf(const CheckSteps& steps, Severity severity)
{
    int count = 0;
    for (const CheckStep& step : steps)
        count += step.severity == severity ? 1 : 0;
    return count;
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
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : more));
}

QString summaryOf(const CheckSteps& steps)
{
    const int warnings = countOf(steps, Severity::warning);
    if (countOf(steps, Severity::failure) > 0) {
        return arriving(steps) > 0 ? QStringLiteral("not every value arrives")
                                   : QStringLiteral("no value arrives");
    }
    if (warnings == 0)
        return QStringLiteral("all is well, every value arrives");
    return QStringLiteral("every value arrives, with %1")
        .arg(countText(warnings, "warning", "warnings"));
}

} // namespace

Verdict judgeAll(const CheckSteps& steps, bool is_interrupted)
{
    Verdict verdict;
    for (const Severity wanted : {Severity::failure, Severity::warning}) {
        for (const CheckStep& step : steps) {
            if (step.severity == wanted)
                verdict.causes << Cause{
                    QStringLiteral("%1: %2").arg(placeOf(step),
                                                 step.cause.isEmpty() ? step.text : step.cause),
                    step.advice};
        }
    }
    if (is_interrupted) {
        verdict.is_well = false;
        verdict.summary = QStringLiteral("interrupted, nothing is proved");
        return verdict;
    }
    verdict.is_well = countOf(steps, Severity::failure) == 0;
    verdict.summary = summaryOf(steps);
    return verdict;
}

QString stepLine(const CheckStep& step, bool as_json)
{
    const QString text =
        step.severity == Severity::not_tried ? QStringLiteral("not tried") : step.text;
    if (!as_json) {
        QString line = QStringLiteral("%1  %2  ")
                           .arg(QLatin1String(markOf(step.severity)), -4)
                           .arg(step.name, -11);
        if (!step.subject.isEmpty())
            line += step.subject + QStringLiteral(": ");
        line += text;
        if (step.seconds)
            line += QStringLiteral("  (%1 ms)").arg(std::lround(*step.seconds * 1000));
        return terminal::printable(line);
    }
    value::OrderedJson line = value::jsonReport("step");
    line["step"] = step.name.toStdString();
    if (!step.subject.isEmpty())
        line["subject"] = step.subject.toStdString();
    line["judgement"] = step.severity == Severity::not_tried
                            ? "not tried"
                            : QString::fromLatin1(markOf(step.severity)).toLower().toStdString();
    line["text"] = text.toStdString();
    if (!step.advice.isEmpty())
        line["advice"] = step.advice.toStdString();
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
        line["text"] = verdict.summary.toStdString();
        line["causes"] = value::OrderedJson::array();
        for (const Cause& cause : verdict.causes) {
            value::OrderedJson one;
            one["found"] = cause.found.toStdString();
            if (!cause.advice.isEmpty())
                one["advice"] = cause.advice.toStdString();
            line["causes"].push_back(one);
        }
        return {value::jsonLine(line)};
    }
    QStringList lines = {QString(), terminal::printable(QStringLiteral("Verdict: ") +
                                                        verdict.summary + QLatin1Char('.'))};
    for (const Cause& cause : verdict.causes) {
        lines << terminal::printable(QStringLiteral("  - ") + cause.found);
        if (!cause.advice.isEmpty())
            lines << terminal::printable(QStringLiteral("    What to do: ") + cause.advice);
    }
    return lines;
}

} // namespace tovik_host::check
