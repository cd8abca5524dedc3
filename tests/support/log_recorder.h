#ifndef TESTS_SUPPORT_LOG_RECORDER_H
#define TESTS_SUPPORT_LOG_RECORDER_H

#include <QMutex>
#include <QStringList>

/// Records every line that is written through Qt's message system while it lives, from any thread;
/// nothing is printed meanwhile. One at a time.
class LogRecorder
{
public:
    LogRecorder();
    ~LogRecorder();

    /// The lines so far, of all kinds, in order.
    QStringList lines() const;
    /// The lines since the last call.
    QStringList take();
    /// Whether \a line has been written.
    bool contains(const char* line) const;
    /// How often \a line has been written.
    int count(const char* line) const;

private:
    Q_DISABLE_COPY(LogRecorder)

    static void record(QtMsgType type, const QMessageLogContext& context, const QString& text);

    mutable QMutex mutex_;
    QStringList lines_;
    QtMessageHandler previous_;
};

#endif
