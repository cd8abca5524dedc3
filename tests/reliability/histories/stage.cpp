#include "tests/reliability/histories/stage.h"

#include "tests/reliability/histories/virtual_time.h"

#include "cloud/post.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <QTimerEvent>

#include <algorithm>

namespace {

Stage* the_stage = nullptr;

/// All that happens in the client's thread comes from the stage.
class StageDispatcher : public QAbstractEventDispatcher
{
public:
    explicit StageDispatcher(Stage* stage) : stage_(stage) {}

    bool processEvents(QEventLoop::ProcessEventsFlags) override { return stage_->takeTurn(); }
    bool hasPendingEvents() override { return false; }
    void registerSocketNotifier(QSocketNotifier*) override {}
    void unregisterSocketNotifier(QSocketNotifier*) override {}
    void registerTimer(int id, int interval, Qt::TimerType, QObject* object) override
    {
        stage_->startTimer(id, interval, object);
    }
    bool unregisterTimer(int id) override { return stage_->stopTimer(id); }
    bool unregisterTimers(QObject* object) override { return stage_->stopTimers(object); }
    QList<TimerInfo> registeredTimers(QObject*) const override { return {}; }
    int remainingTime(int) override { return -1; }
    void wakeUp() override {}
    void interrupt() override
    {
        // Event loops end by their own flags; another thread's word means the whole thread.
        if (QThread::currentThread() != thread())
            stage_->quit();
    }
    void flush() override {}

private:
    Stage* stage_;
};

} // namespace

Stage::Stage()
{
    the_stage = this;
    virtual_time::now = 0;
}

Stage::~Stage()
{
    the_stage = nullptr;
}

Stage* Stage::current()
{
    return the_stage;
}

void Stage::prepare(QThread* thread)
{
    has_client_ = true;
    is_working_ = false;
    quits_ = false;
    go_.tryAcquire(go_.available());
    thread->setEventDispatcher(new StageDispatcher(this));
}

bool Stage::takeTurn()
{
    if (quits_)
        return false;
    if (is_working_) {
        is_working_ = false;
        done_.release();
    }
    go_.acquire();
    if (quits_)
        return false;
    is_working_ = true;
    const std::function<void()> work = std::move(work_);
    work();
    return true;
}

void Stage::run(const std::function<void()>& work)
{
    work_ = work;
    go_.release();
    done_.acquire();
}

void Stage::quit()
{
    quits_ = true;
    go_.release();
}

void Stage::deliver()
{
    run([] { QCoreApplication::sendPostedEvents(); });
}

void Stage::answer(int index, const QByteArray& bytes, bool has_failed)
{
    Post* const post = posts_[std::size_t(index)];
    run([=] { post->finish(bytes, has_failed); });
}

qint64 Stage::nextDue() const
{
    return timers_.empty() ? never : timers_.front()->due;
}

/// As Qt does it: the next shot is planned before this one, and one that comes while the timer's
/// slots still run is left out.
void Stage::shoot()
{
    const TimerPointer timer = timers_.front();
    virtual_time::now = std::max(virtual_time::now, timer->due);
    timers_.pop_front();
    timer->due += timer->interval;
    insert(timer);
    if (timer->is_going_off)
        return;
    run([timer] {
        timer->is_going_off = true;
        QTimerEvent event(timer->id);
        QCoreApplication::sendEvent(timer->object, &event);
        timer->is_going_off = false;
    });
}

void Stage::insert(const TimerPointer& timer)
{
    const auto isLater = [&](const TimerPointer& other) { return other->due > timer->due; };
    timers_.insert(std::find_if(timers_.begin(), timers_.end(), isLater), timer);
}

void Stage::startTimer(int id, int interval, QObject* object)
{
    insert(
        std::make_shared<Timer>(Timer{id, interval, virtual_time::now + interval, object, false}));
}

bool Stage::stopTimer(int id)
{
    const std::size_t before = timers_.size();
    timers_.remove_if([id](const TimerPointer& timer) { return timer->id == id; });
    return timers_.size() < before;
}

bool Stage::stopTimers(const QObject* object)
{
    const std::size_t before = timers_.size();
    timers_.remove_if([object](const TimerPointer& timer) { return timer->object == object; });
    return timers_.size() < before;
}

void Stage::posted(Post* post, const QString& url, const QString& body)
{
    requests_.append(url + QLatin1Char(' ') + body);
    posts_.push_back(post);
    urls_.push_back(url);
}

void Stage::ended(Post* post)
{
    const auto found = std::find(posts_.begin(), posts_.end(), post);
    if (found == posts_.end())
        return;
    urls_.erase(urls_.begin() + (found - posts_.begin()));
    posts_.erase(found);
}

QStringList Stage::takeRequests()
{
    QStringList requests;
    requests.swap(requests_);
    return requests;
}
