#ifndef CLOUD_WRITE_QUEUE_H
#define CLOUD_WRITE_QUEUE_H

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QQueue>
#include <QVariant>

#include <exception>

class Post;

/// Sends writes one after the other, in the order in which they came: each when the one before it
/// has been answered. So the service gets them in order, whatever number the host emits at once,
/// and a burst takes no more connections than a single write.
///
/// A write that the service leaves unanswered for longer than \c patience no longer holds up the
/// next one, and may arrive after it; at most \c most_posts are on their way then, and when none of
/// them ever ends, nothing follows them. The queue drops nothing and sends nothing twice: what
/// cannot go yet waits until it can, or until the client's thread ends. (Qt sends a write again
/// whose connection is lost.)
///
/// Everything runs in the thread of the queue. What waits costs no event loop and no stack.
class WriteQueue : public QObject
{
    Q_OBJECT

public:
    enum
    {
        patience = 1000, ///< Milliseconds.
        most_posts = 16
    };

    /// What a write is for the queue's owner.
    class Sender
    {
    public:
        virtual ~Sender();
        /// Posts a write; the queue takes the post over.
        virtual Post* postWrite(int index, const QVariant& value) = 0;
        /// The write has ended with the reply \a text.
        virtual void endWrite(const QString& text) = 0;
    };

    /// \param sender is not owned
    WriteQueue(Sender* sender, QObject* parent);
    ~WriteQueue();

    /// In the place of \c patience, for the writes that come from now on.
    void setPatience(int milliseconds);

    /// Takes a write. When no other is on its way, sends it and returns when it has ended, having
    /// run an event loop; otherwise returns at once.
    void add(int index, const QVariant& value);

private Q_SLOTS:
    void onFinished();
    void onAlarm();
    void drop();

private:
    Q_DISABLE_COPY(WriteQueue)

    struct Write
    {
        int index;
        QVariant value;
    };

    void sendAndWait();
    void sendDue();
    Post* postNext();
    void endAwaited();
    void forget(Post* post);
    void setAlarm(int milliseconds);

    Sender* sender_;
    int patience_;
    QQueue<Write> waiting_;
    QList<Post*> unanswered_;
    Post* latest_;  ///< The one that was posted last, while it is unanswered.
    Post* awaited_; ///< The one that add() waits for; its frame owns it.
    std::exception_ptr awaited_error_;
    QElapsedTimer since_latest_;
    bool is_alarm_set_;
};

#endif
