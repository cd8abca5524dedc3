#ifndef TOOLS_HOST_CHECK_CHECK_VERDICT_H
#define TOOLS_HOST_CHECK_CHECK_VERDICT_H

#include "tools/host/check/check_step.h"

#include <QString>
#include <QStringList>

namespace tovik_host::check {

/// Something that is not well.
struct Cause
{
    QString found;
    QString advice; ///< What to do about it; may be empty.
};

/// What a check comes to.
struct Verdict
{
    bool is_well = true;   ///< Every value that was looked at arrives.
    QString summary;       ///< One sentence.
    QVector<Cause> causes; ///< The failures, then the warnings; the first cause first.
};

/// \param is_interrupted whether a signal ended the check before its end
Verdict judgeAll(const CheckSteps& steps, bool is_interrupted);

/// One line for a step, or one object with \a as_json.
QString stepLine(const CheckStep& step, bool as_json);
/// The verdict as lines, or as one object.
QStringList verdictLines(const Verdict& verdict, bool as_json);

} // namespace tovik_host::check

#endif
