#include "cloud/tovik_iot.h"

#include "cloud/post.h"
#include "cloud/reconnect_timer.h"
#include "compat/text.h"

#include <QDebug>
#include <QMetaType>
#include <QThread>
#include <QTimer>

#include <limits>

namespace {

const int monitor_interval = 1000;
const int most_attempts = 2;
const int most_earlier_timers = 100;

/// Counts while it lives, for a scope that replies may leave by an exception.
class ScopedCount
{
public:
    explicit ScopedCount(int* count) : count_(count) { ++*count_; }
    ~ScopedCount() { --*count_; }

private:
    Q_DISABLE_COPY(ScopedCount)

    int* count_;
};

/// Stops a timer from any thread: in the timer's own thread at once, else through its event loop,
/// since Qt cannot stop a timer across threads.
void stopTimer(QTimer* timer)
{
    if (timer)
        QMetaObject::invokeMethod(timer, "stop");
}

} // namespace

TovikIot::TovikIot(PropertyTovikIot* property, DriverState* state, int write_patience)
    : property_(property),
      reconnect_timer_(0),
      monitor_timer_(0),
      link_(0),
      attempts_(0),
      own_state_(state ? 0 : new DriverState(property)),
      state_(state ? state : own_state_.data()),
      conversation_(property),
      write_patience_(write_patience)
{
    qRegisterMetaType<QList<MonitorDataItem>>("QList<MonitorDataItem>");
    qDebug() << "[TOVIK IoT] Host: " << property_->host << " -> Project: " << property_->project;
}

TovikIot::~TovikIot() {}

void TovikIot::SetDrvLink(QTcpSocket* link)
{
    link_ = link;
}

void TovikIot::RemoveDrvLink() {}

void TovikIot::SetTrafficListener(TrafficListener* listener)
{
    conversation_.memory()->listener = listener;
}

void TovikIot::SetDrvErrHandle(int err_handle_type, int err_return_time, int err_retry_count,
                               bool err_return_time_en, bool err_restore_switch_bs_en)
{
    error_handling_.type = err_handle_type;
    error_handling_.return_time = err_return_time;
    error_handling_.retry_count = err_retry_count;
    error_handling_.return_time_en = err_return_time_en;
    error_handling_.restore_switch_bs_en = err_restore_switch_bs_en;
}

int TovikIot::Connect2Cloud()
{
    qDebug() << "[TOVIK IoT] Connecting to Cloud ... ";
    const int result = Login(property_->project, property_->email, property_->password);
    if (result != service::success)
        return result;
    return GetGroupList(token_);
}

int TovikIot::attemptToConnect()
{
    const ScopedCount attempt(&attempts_);
    return Connect2Cloud();
}

void TovikIot::Disconnect2Cloud()
{
    qDebug() << "[TOVIK IoT] Disconnecting to Cloud ...";
    stopTimer(monitor_timer_);
    stopTimer(reconnect_timer_);
    state_->disconnected();
}

void TovikIot::StartReconnect()
{
    qDebug() << "[TOVIK IoT] Error handle type: " << error_handling_.type;
    if (!error_handling_.reconnectsByTimer())
        return;
    const int interval = error_handling_.interval();
    qDebug() << "[TOVIK IoT] Reconnect by timer:" << interval << "ms";
    ReconnectTimer* timer = reconnect_timer_;
    if (timer && !timer->isActive())
        timer->start(interval);
}

void TovikIot::StartMonitor()
{
    qDebug() << "[TOVIK IoT] Start Monitor ...";
    if (state_->size() == 0)
        return;
    if (monitor_timer_)
        keepMonitorTimer(monitor_timer_);
    QTimer* timer = makeTimer<QTimer>(SLOT(SlotMonitorTimeOut()));
    monitor_timer_ = timer;
    timer->start(monitor_interval);
}

/// Stops a timer that another one follows; it runs still when two attempts to connect have
/// overlapped. An item that fails in every cycle makes a connection a second: the oldest timers go.
void TovikIot::keepMonitorTimer(QTimer* timer)
{
    timer->stop();
    earlier_monitor_timers_.enqueue(timer);
    if (earlier_monitor_timers_.size() <= most_earlier_timers)
        return;
    QTimer* const oldest = earlier_monitor_timers_.dequeue();
    oldest->setParent(0);
    oldest->deleteLater();
}

/// A timer that calls \a slot. It stops with the thread it lives in, so that the client can be
/// deleted from another thread later.
template <typename Timer>
Timer* TovikIot::makeTimer(const char* slot)
{
    Timer* timer = new Timer(this);
    connect(timer, SIGNAL(timeout()), this, slot);
    connect(thread(), SIGNAL(finished()), timer, SLOT(stop()));
    return timer;
}

int TovikIot::Login(QString project, QString email, QString password)
{
    return conversation_.login(project, email, password, &token_).result;
}

int TovikIot::GetGroupList(QString token)
{
    return conversation_.groupList(token, &property_->groups).result;
}

int TovikIot::GetDataitemList(QString token, PropertyTovikIotGroup* group)
{
    return conversation_.dataitemList(token, group).result;
}

int TovikIot::ReadDataitemValue(QString token, PropertyTovikIotDataItem item)
{
    const service::Outcome outcome = conversation_.readValue(token, &item);
    if (outcome.result != service::success)
        return outcome.result;
    const MonitorDataItem monitored = {item.dataitem_id, item.value};
    monitor_list_.append(monitored);
    state_->valueRead(outcome.reason == service::Outcome::fine);
    return service::success;
}

int TovikIot::WriteDataitemValue(QString token, PropertyTovikIotDataItem item,
                                 const QVariant& value)
{
    return conversation_.writeValue(token, item, value).result;
}

QString TovikIot::PostRequest(QString body, QString url)
{
    Post post(body, url, conversation_.memory());
    post.wait();
    return text::fromLatin1(post.takeBytes());
}

/// A read or write has failed: the connection counts as lost. What the reconnect timer had waited
/// is not lost with it, so that a host that goes on writing does not put the attempt off for ever.
void TovikIot::handleFailure(int result)
{
    ReconnectTimer* const timer = reconnect_timer_;
    const int remaining =
        timer && timer->isActive() ? timer->remaining() : std::numeric_limits<int>::max();
    state_->failed(result);
    Disconnect2Cloud();
    Q_EMIT EmitUpdateErrCode(result);
    StartReconnect();
    if (timer)
        timer->bringForward(remaining);
}

void TovikIot::connectionMade()
{
    state_->connected();
    StartMonitor();
}

void TovikIot::SlotInitialLater()
{
    qDebug() << "[TOVIK IoT] Initializing ... ";
    reconnect_timer_ = makeTimer<ReconnectTimer>(SLOT(SlotReconnect()));
    const int result = attemptToConnect();
    if (result == service::success) {
        qDebug() << "[TOVIK IoT] Connected to Cloud Success!";
        connectionMade();
        return;
    }
    qDebug() << "[TOVIK IoT] Connected to Cloud Fail!";
    state_->failed(result);
    state_->disconnected();
    Q_EMIT EmitUpdateErrCode(result);
    StartReconnect();
}

void TovikIot::SlotReconnect()
{
    if (state_->isConnected()) {
        qDebug() << "[TOVIK IoT] Already connected. Stop reconnect!";
        stopTimer(reconnect_timer_);
        return;
    }
    // Each has a connection and a thread of its own. A host that reads while the service hangs
    // would ask for ever more of them, until the process has no descriptors left.
    if (attempts_ >= most_attempts)
        return;
    qDebug() << "[TOVIK IoT] Try Reconnect ... ";
    const int result = attemptToConnect();
    if (result != service::success)
        state_->failed(result);
    Q_EMIT EmitUpdateErrCode(result);
    if (result != service::success)
        return;
    stopTimer(reconnect_timer_);
    connectionMade();
}

void TovikIot::SlotMonitorTimeOut()
{
    if (!state_->isConnected()) {
        stopTimer(monitor_timer_);
        return;
    }
    monitor_list_.clear();
    state_->cycleBegun();
    QElapsedTimer duration;
    duration.start();
    int done = 0;
    for (; done < state_->size(); ++done) {
        const int result = ReadDataitemValue(token_, state_->copy(done));
        if (result != service::success) {
            qDebug() << "[TOVIK IoT] Stop monitor!";
            handleFailure(result);
            break;
        }
    }
    if (done == state_->size())
        state_->cycleDone(duration.elapsed());
    // A client by itself has no driver that takes them.
    if (!own_state_) {
        if (state_->keepsBack(monitor_list_))
            return;
        state_->valuesSent();
    }
    Q_EMIT EmitGetMonitor(monitor_list_);
}

void TovikIot::SlotWriteValue(int index, const QVariant& write_value)
{
    if (!writes_)
        writes_.reset(new WriteQueue(this, write_patience_));
    writes_->add(index, write_value);
}

/// The queue's next write, with the token of now.
Post* TovikIot::postWrite(int index, const QVariant& value)
{
    return conversation_.postWrite(token_, state_->copy(index), value);
}

void TovikIot::endWrite(Post* post)
{
    const int result = conversation_.takeWrite(post).result;
    state_->writeDone(result == service::success);
    if (result != service::success) {
        qDebug() << "[TOVIK IoT] Write value fail!";
        handleFailure(result);
        return;
    }
    qDebug() << "[TOVIK IoT] Write value done!";
}
