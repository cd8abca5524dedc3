#ifndef TOOLS_HOST_CHECK_CHECK_STEP_H
#define TOOLS_HOST_CHECK_CHECK_STEP_H

#include "tools/host/terminal/context.h"
#include "tools/host/value/json_text.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace tovik_host::check {

/// What a step of a check says about the way that a value takes.
enum class Severity
{
    ok,
    warning,  ///< Values come through, and still something should be known.
    failure,  ///< No value comes through, or one item's does not.
    not_tried ///< A step before it has failed.
};

/// One step of the way, judged.
struct CheckStep
{
    QString name;    ///< Of the step: "name", "connect", "tls", "login" and so on.
    QString subject; ///< What it is about, where there are several: an address, an item.
    Severity severity = Severity::ok;
    QString text;                  ///< What was found.
    QString cause = QString();     ///< The same for the verdict, where the text says more besides.
    QString advice = QString();    ///< What to do about it; empty when all is well.
    std::optional<double> seconds; ///< How long it took, where it is something that takes time.
    /// What was found, for programs; an object.
    value::OrderedJson facts = value::OrderedJson::object();

    /// Says what was found, and what to do about it.
    void find(Severity how, const QString& what, const QString& what_to_do = QString())
    {
        severity = how;
        text = what;
        advice = what_to_do;
    }
};

using CheckSteps = QVector<CheckStep>;

inline CheckStep makeStep(const char* name, Severity severity = Severity::ok,
                          const QString& text = QString(), const QString& advice = QString())
{
    CheckStep step;
    step.name = QString::fromLatin1(name);
    step.find(severity, text, advice);
    return step;
}

struct Cause
{
    QString found;
    QString advice; ///< What to do about it; may be empty.
};

struct Verdict
{
    bool is_well = true;   ///< Every value that was looked at arrives.
    QString summary;       ///< One sentence.
    QVector<Cause> causes; ///< The failures, then the warnings; the first cause first.
};

/// \param is_interrupted whether a signal ended the check before its end
Verdict judgeAll(const CheckSteps& steps, bool is_interrupted);

/// Tells the verdict, as lines or as one object with \a as_json, and gives the exit code.
int tellVerdict(terminal::Streams& streams, const Verdict& verdict, bool as_json);

/// One line for a step, or one object with \a as_json.
QString stepLine(const CheckStep& step, bool as_json);
/// The verdict as lines, or as one object.
QStringList verdictLines(const Verdict& verdict, bool as_json);

} // namespace tovik_host::check

#endif
