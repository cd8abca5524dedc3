#include "cloud/tovik_iot.h"

#include "cloud/catalogue.h"
#include "cloud/data_item_type.h"
#include "cloud/post.h"
#include "cloud/service_message.h"
#include "compat/text.h"

#include <QDebug>
#include <QMetaType>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>

#include <limits>

namespace {

const int default_interval = 1000;
const int monitor_interval = 1000;
const int most_attempts = 2;

const char login_path[] = "/qlix_api/auth/login";
const char group_list_path[] = "/qlix_api/imonitor/group/list";
const char dataitem_list_path[] = "/qlix_api/imonitor/group/dataitems";
const char read_path[] = "/qlix_api/imonitor/dataitem/value";
const char write_path[] = "/qlix_api/imonitor/dataitem/setValue";

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

/// Posts \a members to \a url and checks the reply, whose members \a reply receives when the result
/// is success.
int call(TovikIot* client, const QString& url, const picojson::object& members,
         const service::ReplyMessages& messages, picojson::object* reply)
{
    const QString text = client->PostRequest(service::requestBody(members), url);
    return service::checkReply(text, messages, reply);
}

/// The body of the request that writes \a value to \a item.
QString writeBody(const QString& token, const PropertyTovikIotDataItem& item, const QVariant& value)
{
    picojson::object members;
    members["token"] = service::member(token);
    members["dataitem_id"] = service::member(item.dataitem_id);
    if (const DataItemType* type = findDataItemType(item.type))
        members["value"] = type->to_json(value);
    return service::requestBody(members);
}

int checkWrite(const QString& reply)
{
    picojson::object members;
    return service::checkReply(reply, service::write_messages, &members);
}

} // namespace

TovikIot::TovikIot(PropertyTovikIot* property)
    : property_(property),
      connected_(false),
      reconnect_timer_(0),
      monitor_timer_(0),
      link_(0),
      err_handle_type_(1),
      err_return_time_(1),
      err_retry_count_(2),
      err_return_time_en_(true),
      err_restore_switch_bs_en_(true),
      reconnect_interval_(default_interval),
      attempts_(0),
      items_(property),
      metrics_(property->dataitems.size()),
      writes_(this, this)
{
    qRegisterMetaType<QList<MonitorDataItem>>("QList<MonitorDataItem>");
    qDebug() << "[TOVIK IoT] Host: " << property_->host << " -> Project: " << property_->project;
}

TovikIot::~TovikIot() {}

ServedItems* TovikIot::Items()
{
    return &items_;
}

const DriverMetrics* TovikIot::Metrics() const
{
    return &metrics_;
}

void TovikIot::SetDrvLink(QTcpSocket* link)
{
    link_ = link;
}

void TovikIot::RemoveDrvLink() {}

void TovikIot::SetDrvErrHandle(int err_handle_type, int err_return_time, int err_retry_count,
                               bool err_return_time_en, bool err_restore_switch_bs_en)
{
    err_handle_type_ = err_handle_type;
    err_return_time_ = err_return_time;
    err_retry_count_ = err_retry_count;
    err_return_time_en_ = err_return_time_en;
    err_restore_switch_bs_en_ = err_restore_switch_bs_en;
    reconnect_interval_ = default_interval;
    if (err_handle_type_ == 1 && err_return_time_en_) {
        const qint64 wanted = Q_INT64_C(1000) * err_return_time_;
        const qint64 longest = std::numeric_limits<int>::max();
        reconnect_interval_ = int(qBound(-longest, wanted, longest));
    }
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
    loseConnection();
    stopTimer(reconnect_timer_);
}

void TovikIot::loseConnection()
{
    qDebug() << "[TOVIK IoT] Disconnecting to Cloud ...";
    stopTimer(monitor_timer_);
    connected_ = false;
}

void TovikIot::StartReconnect()
{
    qDebug() << "[TOVIK IoT] Error handle type: " << err_handle_type_;
    const bool wanted = err_handle_type_ == 0 || err_handle_type_ == 2 ||
                        (err_handle_type_ == 1 && err_return_time_en_);
    if (!wanted)
        return;
    qDebug() << "[TOVIK IoT] Reconnect by timer:" << reconnect_interval_ << "ms";
    QTimer* timer = reconnect_timer_;
    if (timer && !timer->isActive())
        timer->start(reconnect_interval_);
}

void TovikIot::StartMonitor()
{
    qDebug() << "[TOVIK IoT] Start Monitor ...";
    if (items_.size() == 0)
        return;
    // Runs still when two attempts to connect have overlapped.
    stopTimer(monitor_timer_);
    QTimer* timer = makeTimer(SLOT(SlotMonitorTimeOut()));
    monitor_timer_ = timer;
    timer->start(monitor_interval);
}

/// A timer that calls \a slot. It stops with the thread it lives in, so that the client can be
/// deleted from another thread later.
QTimer* TovikIot::makeTimer(const char* slot)
{
    QTimer* timer = new QTimer(this);
    connect(timer, SIGNAL(timeout()), this, slot);
    connect(thread(), SIGNAL(finished()), timer, SLOT(stop()));
    return timer;
}

int TovikIot::Login(QString project, QString email, QString password)
{
    picojson::object members;
    members["project"] = service::member(project);
    members["email"] = service::member(email);
    members["password"] = service::member(password);
    picojson::object reply;
    const int result = call(this, urlOf(login_path), members, service::login_messages, &reply);
    if (result != service::success)
        return result;
    const picojson::value& token = service::find(reply, "token");
    if (token.is<picojson::null>()) {
        qDebug() << "[TOVIK IoT] Login Error: no token!";
        return service::client_failure;
    }
    if (!token.is<std::string>()) {
        qDebug() << "[TOVIK IoT] Login Error: token invalid!";
        return service::client_failure;
    }
    token_ = text::fromLatin1(token.get<std::string>());
    return token_.isEmpty() ? service::client_failure : service::success;
}

QString TovikIot::Token() const
{
    return token_;
}

int TovikIot::GetGroupList(QString token)
{
    property_->groups.clear();
    picojson::object members;
    members["token"] = service::member(token);
    picojson::object reply;
    int result = call(this, urlOf(group_list_path), members, service::group_list_messages, &reply);
    const picojson::array* groups = 0;
    if (result == service::success)
        result = catalogue::findGroups(reply, &groups);
    if (result != service::success || !groups)
        return result;
    for (picojson::array::const_iterator it = groups->begin(); it != groups->end(); ++it) {
        PropertyTovikIotGroup group;
        if (!catalogue::readGroup(*it, &group))
            continue;
        result = GetDataitemList(token, &group);
        if (result != service::success)
            return result;
        property_->groups.append(group);
    }
    return service::success;
}

int TovikIot::GetDataitemList(QString token, PropertyTovikIotGroup* group)
{
    picojson::object members;
    members["token"] = service::member(token);
    members["group_id"] = service::member(group->group_id);
    picojson::object reply;
    int result =
        call(this, urlOf(dataitem_list_path), members, service::dataitem_list_messages, &reply);
    const picojson::array* dataitems = 0;
    if (result == service::success)
        result = catalogue::findDataitems(reply, group->name, &dataitems);
    if (result != service::success || !dataitems)
        return result;
    for (picojson::array::const_iterator it = dataitems->begin(); it != dataitems->end(); ++it) {
        PropertyTovikIotDataItem item;
        if (catalogue::readDataitem(*it, &item))
            group->dataitems.append(item);
    }
    return service::success;
}

int TovikIot::ReadDataitemValue(QString token, PropertyTovikIotDataItem item)
{
    bool taken = false;
    return readValue(token, item, &taken);
}

/// \param taken receives whether the service's value is of the item's type.
int TovikIot::readValue(const QString& token, PropertyTovikIotDataItem item, bool* taken)
{
    *taken = false;
    picojson::object members;
    members["token"] = service::member(token);
    members["dataitem_id"] = service::member(item.dataitem_id);
    picojson::object reply;
    const int result = call(this, urlOf(read_path), members, service::read_messages, &reply);
    if (result != service::success)
        return result;
    const picojson::value& value = service::find(reply, "value");
    if (value.is<picojson::null>()) {
        qDebug() << "[TOVIK IoT] ReadDataitemValue Error: no value!";
        return service::client_failure;
    }
    const DataItemType* type = findDataItemType(item.type);
    *taken = type && (value.*type->is_expected)();
    if (*taken)
        item.value = type->from_json(value);
    MonitorDataItem monitored;
    monitored.dataitem_id = item.dataitem_id;
    monitored.value = item.value;
    monitor_list_.append(monitored);
    return service::success;
}

int TovikIot::WriteDataitemValue(QString token, PropertyTovikIotDataItem item,
                                 const QVariant& value)
{
    return checkWrite(PostRequest(writeBody(token, item, value), urlOf(write_path)));
}

QString TovikIot::urlOf(const char* path) const
{
    return property_->host + QLatin1String(path);
}

QString TovikIot::PostRequest(QString body, QString url)
{
    Post post(body, url);
    post.wait();
    return post.takeText();
}

/// A read or write has failed: the connection counts as lost. The reconnect timer is left as it
/// is when it runs: were it started anew, a host that goes on writing would put the attempt off for
/// ever, and an attempt that this timer has begun would get a second one of the same timer inside
/// it.
void TovikIot::handleFailure(int result)
{
    metrics_.failed(result);
    loseConnection();
    Q_EMIT EmitUpdateErrCode(result);
    StartReconnect();
}

void TovikIot::SlotInitialLater()
{
    qDebug() << "[TOVIK IoT] Initializing ... ";
    reconnect_timer_ = makeTimer(SLOT(SlotReconnect()));
    const int result = attemptToConnect();
    if (result != service::success) {
        qDebug() << "[TOVIK IoT] Connected to Cloud Fail!";
        metrics_.failed(result);
        connected_ = false;
        Q_EMIT EmitUpdateErrCode(result);
        StartReconnect();
        return;
    }
    qDebug() << "[TOVIK IoT] Connected to Cloud Success!";
    metrics_.connected();
    connected_ = true;
    StartMonitor();
}

void TovikIot::SlotReconnect()
{
    if (connected_) {
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
    if (result == service::success)
        metrics_.connected();
    else
        metrics_.failed(result);
    Q_EMIT EmitUpdateErrCode(result);
    if (result != service::success)
        return;
    stopTimer(reconnect_timer_);
    connected_ = true;
    StartMonitor();
}

void TovikIot::SlotMonitorTimeOut()
{
    if (!connected_) {
        stopTimer(monitor_timer_);
        return;
    }
    monitor_list_.clear();
    QElapsedTimer duration;
    duration.start();
    int done = 0;
    for (; done < items_.size(); ++done) {
        bool taken = false;
        const int result = readValue(token_, items_.copy(done), &taken);
        if (result != service::success) {
            qDebug() << "[TOVIK IoT] Stop monitor!";
            handleFailure(result);
            break;
        }
        metrics_.valueRead(done, taken);
    }
    if (done == items_.size())
        metrics_.cycleDone(duration.elapsed());
    metrics_.valuesDelivered();
    Q_EMIT EmitGetMonitor(monitor_list_);
}

void TovikIot::SlotWriteValue(int index, const QVariant& write_value)
{
    writes_.add(index, write_value);
}

/// The queue's next write, with the token of now.
Post* TovikIot::postWrite(int index, const QVariant& value)
{
    return new Post(writeBody(token_, items_.copy(index), value), urlOf(write_path));
}

void TovikIot::endWrite(const QString& text)
{
    const int result = checkWrite(text);
    if (result != service::success) {
        qDebug() << "[TOVIK IoT] Write value fail!";
        handleFailure(result);
        return;
    }
    qDebug() << "[TOVIK IoT] Write value done!";
}
