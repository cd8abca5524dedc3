#ifndef COMPAT_TIME_ZONE_H
#define COMPAT_TIME_ZONE_H

#include <QDateTime>
#if QT_VERSION >= 0x050200
#include <QTimeZone>
#endif

/// Whether a date-time has the time zone that it needs: writing one of a zone that this machine
/// does not have ends the process. Before Qt 5.2 there were no zones.
#if QT_VERSION >= 0x050200
inline bool hasTimeZone(const QDateTime& moment)
{
    return moment.timeSpec() != Qt::TimeZone || moment.timeZone().isValid();
}
#else
inline bool hasTimeZone(const QDateTime&)
{
    return true;
}
#endif

#endif
