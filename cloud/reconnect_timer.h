#ifndef CLOUD_RECONNECT_TIMER_H
#define CLOUD_RECONNECT_TIMER_H

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QTimer>

/// A repeating timer that can be stopped and started without losing what it has waited already.
///
/// A failure stops the timer and starts it anew. A host whose writes fail twice a second would put
/// a reconnect after a second off for ever, were the wait to begin from its start each time.
///
/// A shot that comes while the slots of another one still run is left out, as Qt does for a timer
/// that nobody has stopped meanwhile.
class ReconnectTimer : public QTimer
{
    Q_OBJECT

public:
    explicit ReconnectTimer(QObject* parent);

    /// Milliseconds until the next shot, of a timer that runs.
    int remaining() const;
    /// Makes the next shot of a timer that runs come after \a milliseconds, if that is sooner than
    /// it would come.
    void bringForward(int milliseconds);
    /// Starts with a whole interval of \a milliseconds.
    void start(int milliseconds);

public Q_SLOTS:
    void stop();

protected:
    void timerEvent(QTimerEvent* event);

private:
    Q_DISABLE_COPY(ReconnectTimer)

    QBasicTimer early_;
    QElapsedTimer since_start_; ///< Or since the latest shot.
    int due_;                   ///< When the next shot comes, in milliseconds after that.
    bool is_shooting_;
};

#endif
