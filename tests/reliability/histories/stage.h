#ifndef TESTS_RELIABILITY_HISTORIES_STAGE_H
#define TESTS_RELIABILITY_HISTORIES_STAGE_H

#include <QSemaphore>
#include <QString>
#include <QStringList>

#include <functional>
#include <limits>
#include <list>
#include <memory>
#include <vector>

class Post;
class QObject;
class QThread;

/// Where the library runs for a history: the driver's own two threads, of which one at a time does
/// anything, and a clock that stands still until it is moved. The client's thread has an event
/// dispatcher that asks the stage for each thing that it does: what reaches it, and when, is the
/// history's choice, inside a nested event loop as well.
///
/// One at a time; made, used and destroyed in the host's thread.
class Stage
{
public:
    /// No timer runs.
    static const qint64 never = std::numeric_limits<qint64>::max();

    Stage();
    ~Stage();
    static Stage* current();

    /// \name For the host's thread
    /// @{

    /// Lets the client's thread do one thing; returns when it has, or waits in an event loop.
    void run(const std::function<void()>& work);
    /// Whether a client's thread is there and has not been told to quit.
    bool hasClient() const { return has_client_ && !quits_; }
    /// When the client's next timer is due.
    qint64 nextDue() const;
    /// Moves the clock to that moment and lets the timer go off.
    void shoot();
    /// Delivers what is queued for the client's thread.
    void deliver();
    /// Answers the post at \a index of posts().
    void answer(int index, const QByteArray& bytes, bool has_failed);
    /// Those without an answer, in the order of their making.
    const std::vector<Post*>& posts() const { return posts_; }
    const QString& urlOf(int index) const { return urls_[std::size_t(index)]; }
    QStringList takeRequests();
    /// @}

    /// \name For the seams
    /// @{

    void posted(Post* post, const QString& url, const QString& body);
    void ended(Post* post);
    /// The thread gets a dispatcher of the stage.
    void prepare(QThread* thread);
    /// What the client's event loops do: false when they are to end.
    bool takeTurn();
    void quit();
    void startTimer(int id, int interval, QObject* object);
    bool stopTimer(int id);
    bool stopTimers(const QObject* object);
    /// @}

private:
    struct Timer
    {
        int id;
        int interval;
        qint64 due;
        QObject* object;
        bool is_going_off;
    };
    using TimerPointer = std::shared_ptr<Timer>;

    void insert(const TimerPointer& timer);

    QSemaphore go_;
    QSemaphore done_;
    std::function<void()> work_;
    bool has_client_ = false;
    bool is_working_ = false;
    std::atomic<bool> quits_{false};
    std::list<TimerPointer> timers_; ///< In the order in which they are due.
    std::vector<Post*> posts_;
    std::vector<QString> urls_;
    QStringList requests_;
};

#endif
