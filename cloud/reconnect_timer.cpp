#include "cloud/reconnect_timer.h"

#include <QTimerEvent>

ReconnectTimer::ReconnectTimer(QObject* parent) : QTimer(parent), due_(0), is_shooting_(false) {}

int ReconnectTimer::remaining() const
{
    return int(qMax(qint64(0), due_ - since_start_.elapsed()));
}

void ReconnectTimer::bringForward(int milliseconds)
{
    if (!isActive() || milliseconds >= remaining())
        return;
    due_ = int(since_start_.elapsed()) + milliseconds;
    early_.start(milliseconds, this);
}

void ReconnectTimer::start(int milliseconds)
{
    early_.stop();
    due_ = milliseconds;
    since_start_.start();
    QTimer::start(milliseconds);
}

void ReconnectTimer::stop()
{
    early_.stop();
    QTimer::stop();
}

void ReconnectTimer::timerEvent(QTimerEvent*)
{
    early_.stop();
    // Another object may have stopped it as the timer that it is for everybody else.
    if (!isActive())
        return;
    // Made anew, the timer tells of the shots that come while the slots of this one still run; Qt
    // would keep them to itself, and the time that remains would be wrong. One without an interval
    // would tell of nothing else.
    if (interval() > 0)
        start(interval());
    if (is_shooting_)
        return;
    is_shooting_ = true;
    QTimerEvent shot(timerId());
    QTimer::timerEvent(&shot);
    is_shooting_ = false;
}
