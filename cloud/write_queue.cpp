#include "cloud/write_queue.h"

#include "cloud/post.h"

#include <QScopedPointer>
#include <QThread>
#include <QTimer>

#include <utility>

WriteQueue::Sender::~Sender() {}

WriteQueue::WriteQueue(Sender* sender, QObject* parent)
    : QObject(parent),
      sender_(sender),
      patience_(patience),
      latest_(0),
      awaited_(0),
      is_alarm_set_(false)
{}

WriteQueue::~WriteQueue()
{
    drop();
}

void WriteQueue::setPatience(int milliseconds)
{
    patience_ = milliseconds;
}

void WriteQueue::add(int index, const QVariant& value)
{
    const Write write = {index, value};
    waiting_.enqueue(write);
    if (unanswered_.isEmpty() && !awaited_)
        sendAndWait();
    else
        sendDue();
}

void WriteQueue::sendAndWait()
{
    const QScopedPointer<Post> post(postNext());
    awaited_ = post.data();
    post->wait();
    awaited_ = 0;
    // Without an answer still when the thread has been told to quit.
    if (unanswered_.contains(post.data())) {
        forget(post.data());
        sender_->endWrite(post->takeText());
    }
    if (awaited_error_) {
        std::exception_ptr error;
        std::swap(error, awaited_error_);
        std::rethrow_exception(error);
    }
}

/// Sends the next write if it may go now.
void WriteQueue::sendDue()
{
    if (waiting_.isEmpty() || unanswered_.size() >= most_posts)
        return;
    // One that was left behind by a later one holds up nothing any more.
    if (latest_) {
        const qint64 left = patience_ - since_latest_.elapsed();
        if (left > 0) {
            setAlarm(int(left));
            return;
        }
    }
    postNext();
    if (!waiting_.isEmpty())
        setAlarm(patience_);
}

/// Posts the next write. When it cannot be put into a request, the error leaves the queue as if
/// that write had never come.
Post* WriteQueue::postNext()
{
    const Write next = waiting_.dequeue();
    Post* const post = sender_->postWrite(next.index, next.value);
    connect(post, SIGNAL(EmitFinished()), this, SLOT(onFinished()));
    // Connections have to be given back in the thread that made them, before it is gone.
    connect(thread(), SIGNAL(finished()), this, SLOT(drop()), Qt::UniqueConnection);
    unanswered_.append(post);
    latest_ = post;
    since_latest_.start();
    return post;
}

/// A timer without an object that somebody would have to stop with the thread.
void WriteQueue::setAlarm(int milliseconds)
{
    if (is_alarm_set_)
        return;
    is_alarm_set_ = true;
    QTimer::singleShot(milliseconds, this, SLOT(onAlarm()));
}

void WriteQueue::onAlarm()
{
    is_alarm_set_ = false;
    sendDue();
}

void WriteQueue::onFinished()
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): only posts are connected
    Post* const post = static_cast<Post*>(sender());
    forget(post);
    if (post == awaited_) {
        endAwaited();
    } else {
        post->deleteLater();
        sender_->endWrite(post->takeText());
    }
    sendDue();
}

/// The frame that waits for it may have to wait for others that run inside it; neither the result
/// nor the next write need. An error is for that frame all the same.
void WriteQueue::endAwaited()
{
    try {
        sender_->endWrite(awaited_->takeText());
    } catch (...) {
        awaited_error_ = std::current_exception();
    }
}

/// It no longer counts as on its way.
void WriteQueue::forget(Post* post)
{
    unanswered_.removeOne(post);
    if (latest_ == post)
        latest_ = 0;
}

/// Lets go of everything that nobody waits for.
void WriteQueue::drop()
{
    waiting_.clear();
    for (int i = 0; i < unanswered_.size(); ++i) {
        if (unanswered_.at(i) != awaited_)
            delete unanswered_.at(i);
    }
    unanswered_.clear();
    latest_ = 0;
}
