#ifndef TOOLS_HOST_WATCH_TABLE_VIEW_H
#define TOOLS_HOST_WATCH_TABLE_VIEW_H

#include "tools/host/watch/watch_view.h"

#include <QString>
#include <QStringList>
#include <QVector>

namespace tovik_host::watch {

/// How a line of the table stands out.
enum class LineStyle
{
    plain,
    heading,
    stale,
    trouble,
    log
};

/// One line of the screen, no wider than the screen.
struct ScreenLine
{
    QString text;
    LineStyle style;
};

/// Draws the whole screen of a watch: the header, the table and the latest log lines. What does
/// not fit is cut: first the log, then the last items, for which a line says how many they are.
QVector<ScreenLine> drawTable(const WatchSubject& subject, const WatchModel& model,
                              const QStringList& log, const QDateTime& now,
                              terminal::ScreenSize size);

/// A span of time in its largest whole unit, such as "3 min".
QString ageText(qint64 seconds);

} // namespace tovik_host::watch

#endif
