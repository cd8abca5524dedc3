#include "cloud/write_queue.h"

#include "cloud/post.h"

#include <QThread>

#include <utility>

WriteQueue::WriteQueue(Sender* sender, int patience)
    : sender_(sender),
      is_waiting_(false),
      awaited_(0)
{
    patience_.setSingleShot(true);
    patience_.setInterval(patience);
    connect(&patience_, SIGNAL(timeout()), this, SLOT(sendDue()));
    // Connections and timers have to be given back in their own thread, before it is gone.
    connect(thread(), SIGNAL(finished()), this, SLOT(drop()));
}

WriteQueue::~WriteQueue()
{
    drop();
}

void WriteQueue::add(int index, const QVariant& value)
{
    const Write write = {index, value};
    waiting_.enqueue(write);
    const bool waits = unanswered_.isEmpty() && !is_waiting_;
    sendDue();
    if (!waits)
        return;
    is_waiting_ = true;
    Post* const first = unanswered_.first();
    awaited_ = first;
    first->wait();
    endAwaited();
    is_waiting_ = false;
    if (awaited_error_) {
        std::exception_ptr error;
        std::swap(error, awaited_error_);
        std::rethrow_exception(error);
    }
}

/// Ends a write that has no answer still when the thread has been told to quit.
void WriteQueue::endAwaited()
{
    if (awaited_)
        end(awaited_);
}

/// Sends the next write if it may go now.
void WriteQueue::sendDue()
{
    if (waiting_.isEmpty() || unanswered_.size() >= most_posts || patience_.isActive())
        return;
    const Write next = waiting_.dequeue();
    Post* const post = sender_->postWrite(next.index, next.value);
    connect(post, SIGNAL(EmitFinished()), this, SLOT(onFinished()));
    unanswered_.append(post);
    patience_.start();
}

void WriteQueue::onFinished()
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): only posts are connected
    end(static_cast<Post*>(sender()));
    sendDue();
}

/// The add() that waits for a post may itself have to wait for others that run inside it; neither
/// the post's result nor the next write need. An error is for that add() all the same.
void WriteQueue::end(Post* post)
{
    const bool is_awaited = post == awaited_;
    if (is_awaited)
        awaited_ = 0;
    if (post == unanswered_.last())
        patience_.stop();
    unanswered_.removeOne(post);
    post->deleteLater();
    try {
        sender_->endWrite(post);
    } catch (...) {
        if (!is_awaited)
            throw;
        awaited_error_ = std::current_exception();
    }
}

/// Lets go of everything that has no answer yet.
void WriteQueue::drop()
{
    patience_.stop();
    waiting_.clear();
    qDeleteAll(unanswered_);
    unanswered_.clear();
}
