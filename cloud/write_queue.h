#ifndef CLOUD_WRITE_QUEUE_H
#define CLOUD_WRITE_QUEUE_H

#include <QList>
#include <QObject>
#include <QQueue>
#include <QTimer>
#include <QVariant>

#include <exception>

class Post;

/// Sends writes one after the other, in the order in which they came: each when the one before it
/// has been answered. So the service gets them in order, whatever number the host emits at once,
/// and a burst takes no more connections than a single write.
///
/// A write that the service leaves unanswered for longer than the patience no longer holds up the
/// next one, and may arrive after it; at most \c most_posts are on their way then, and when none of
/// them ever ends, nothing follows them. The queue drops nothing and sends nothing twice: what
/// cannot go yet waits until it can, or until the thread ends. (Qt sends a write again whose
/// connection is lost.)
///
/// Everything runs in the thread that has made the queue, and ends with it. What waits costs no
/// event loop and no stack.
class WriteQueue : public QObject
{
    Q_OBJECT

public:
    enum
    {
        usual_patience = 1000, ///< Milliseconds.
        most_posts = 16
    };

    /// What a write is for the queue's owner.
    class Sender
    {
    public:
        virtual ~Sender() {}
        /// Posts a write; the queue takes the post over.
        virtual Post* postWrite(int index, const QVariant& value) = 0;
        /// The write has ended.
        virtual void endWrite(Post* post) = 0;
    };

    /// \param sender is not owned
    /// \param patience in milliseconds
    explicit WriteQueue(Sender* sender, int patience = usual_patience);
    ~WriteQueue();

    /// Takes a write. When no other is on its way, sends it and returns when it has ended, having
    /// run an event loop; otherwise returns at once. Raises what \c postWrite raises, which drops
    /// the write, and what \c endWrite raises for a write that it waited for.
    void add(int index, const QVariant& value);

private Q_SLOTS:
    void sendDue();
    void onFinished();
    void drop();

private:
    Q_DISABLE_COPY(WriteQueue)

    struct Write
    {
        int index;
        QVariant value;
    };

    void endAwaited();
    void end(Post* post);

    Sender* sender_;
    QQueue<Write> waiting_;
    QList<Post*> unanswered_; ///< In the order of their posting.
    QTimer patience_;         ///< Runs while the latest post keeps the next from going.
    bool is_waiting_;         ///< An add() runs an event loop.
    Post* awaited_;           ///< For this one, while it has no answer.
    std::exception_ptr awaited_error_;
};

#endif
