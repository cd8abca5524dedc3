#ifndef TOOLS_HOST_CHECK_CHECK_STEP_H
#define TOOLS_HOST_CHECK_CHECK_STEP_H

#include <nlohmann/json.hpp>

#include <QString>
#include <QVector>

#include <optional>

namespace tovik_host::check {

/// What a step of a check says about the way that a value takes.
enum class Judgement
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
    Judgement judgement = Judgement::ok;
    QString text;                  ///< What was found.
    QString cause = QString();     ///< The same for the verdict, where the text says more besides.
    QString advice = QString();    ///< What to do about it; empty when all is well.
    std::optional<double> seconds; ///< How long it took, where it is something that takes time.
    /// What was found, for programs; an object.
    nlohmann::ordered_json facts = nlohmann::ordered_json::object();
};

using CheckSteps = QVector<CheckStep>;

inline CheckStep makeStep(const char* name, Judgement judgement, const QString& text,
                          const QString& advice = QString())
{
    CheckStep step;
    step.name = QString::fromLatin1(name);
    step.judgement = judgement;
    step.text = text;
    step.advice = advice;
    return step;
}

} // namespace tovik_host::check

#endif
