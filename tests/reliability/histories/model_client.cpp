#include "tests/reliability/histories/model.h"
#include "tests/reliability/histories/values.h"

#include <algorithm>
#include <tuple>

namespace {

const int most_writes = 16;

const char* const paths[] = {
    "/qlix_api/auth/login", "/qlix_api/imonitor/group/list", "/qlix_api/imonitor/group/dataitems",
    "/qlix_api/imonitor/dataitem/value", "/qlix_api/imonitor/dataitem/setValue"};
const char* const words[] = {"Login", "GetGroupList", "GetDataitemList", "ReadDataitemValue",
                             "WriteDataitemValue"};

} // namespace

/// Lets everything go on that can.
void Model::proceed()
{
    while (!stack_.empty()) {
        const Frame top = stack_.back();
        if (top.kind == Frame::delivery) {
            if (to_client_.empty() || to_client_.front().number > deliverable_) {
                stack_.pop_back();
                continue;
            }
            const ForClient message = to_client_.front();
            to_client_.pop_front();
            handle(message);
            continue;
        }
        if (top.kind != Frame::shot && !posts_.at(top.post).is_answered && !quits_)
            return;
        stack_.pop_back();
        resume(top);
    }
}

void Model::resume(const Frame& frame)
{
    Reply reply;
    if (frame.kind != Frame::shot) {
        const Post& post = posts_.at(frame.post);
        reply.common = Reply::not_json;
        if (post.is_answered)
            reply = post.reply;
    }
    switch (frame.kind) {
    case Frame::delivery:
        break;
    case Frame::shot:
        if (frame.timer == reconnect_timer)
            reconnect_goes_off_ = false;
        return;
    case Frame::attempt:
        posts_.erase(frame.post);
        return goOnAttempt(frame, reply);
    case Frame::cycle:
        posts_.erase(frame.post);
        return goOnCycle(frame, reply);
    case Frame::write_wait:
        // Ended with its answer; without one when the thread ends.
        if (awaited_write_ >= 0)
            endWrite(awaited_write_, reply);
        posts_.erase(frame.post);
        is_write_waited_for_ = false;
    }
}

void Model::handle(const ForClient& message)
{
    if (message.kind == ForClient::initial)
        beginAttempt(true);
    else if (message.kind == ForClient::reconnect)
        tryReconnect();
    else
        addWrite(message.index, message.value);
}

qint64 Model::nextDue() const
{
    qint64 due = never;
    for (const Timer& timer : timers_) {
        if (timer.runs)
            due = qMin(due, timer.due);
    }
    return due;
}

void Model::begin(TimerName name, qint64 interval)
{
    timers_[name] = {true, now_ + interval, interval, ++planned_};
}

/// The next timer goes off. A shot that comes while the slot of another one still runs is left out.
void Model::shoot()
{
    int name = no_timer;
    for (int i = 0; i < no_timer; ++i) {
        if (timers_[i].runs &&
            (name == no_timer || std::tie(timers_[i].due, timers_[i].planned) <
                                     std::tie(timers_[name].due, timers_[name].planned)))
            name = i;
    }
    if (name == no_timer)
        return;
    Timer& timer = timers_[name];
    now_ = timer.due;
    timer.due += timer.interval;
    timer.planned = ++planned_;
    if (name == patience_timer) {
        timer.runs = false;
        return sendWrite();
    }
    Frame frame(Frame::shot);
    frame.timer = TimerName(name);
    frame.timer_number = monitor_number_;
    const auto isSame = [&](const Frame& other) {
        return other.kind == Frame::shot && other.timer == monitor_timer &&
               other.timer_number == frame.timer_number;
    };
    if (name == reconnect_timer ? reconnect_goes_off_
                                : std::any_of(stack_.begin(), stack_.end(), isSame))
        return;
    stack_.push_back(frame);
    if (name == reconnect_timer) {
        reconnect_goes_off_ = true;
        tryReconnect();
    } else {
        beginCycle();
    }
    proceed();
}

int Model::post(Reply::Operation operation, const QString& body)
{
    seen_.requests.append(QLatin1String("https://service") + QLatin1String(paths[operation]) +
                          QLatin1Char(' ') + body);
    posts_[post_count_] = {operation, false, {}};
    return post_count_++;
}

void Model::answerPost(int index, const Reply& reply)
{
    for (auto& numbered : posts_) {
        if (numbered.second.is_answered || index-- > 0)
            continue;
        numbered.second.is_answered = true;
        numbered.second.reply = reply;
        if (numbered.second.operation == Reply::write) {
            const int number = numbered.first;
            endWrite(number, reply);
            sendWrite();
            const auto waits = [number](const Frame& frame) { return frame.post == number; };
            if (std::none_of(stack_.begin(), stack_.end(), waits))
                posts_.erase(number);
        }
        return proceed();
    }
}

int Model::fail(const char* text)
{
    say(text);
    return detected;
}

/// The part that all replies have in common.
int Model::check(const Reply& reply, Reply::Operation operation)
{
    const QString start =
        QStringLiteral("[TOVIK IoT] %1 Error: ").arg(QLatin1String(words[operation]));
    if (reply.is_broken)
        say(R"([TOVIK IoT] Post Request Error:  "broken")");
    switch (reply.common) {
    case Reply::not_json:
        say(start + QLatin1String("parsing JSON failed!"));
        return detected;
    case Reply::no_code:
        say(start + QLatin1String("no errorcode!"));
        return detected;
    case Reply::invalid_code:
        say(start + QLatin1String("errorcode invalid!"));
        return detected;
    case Reply::code_of_service:
        say(QString(start).replace(QLatin1String("WriteDataitemValue"),
                                   QLatin1String("SetDataitemValue")) +
            QStringLiteral(" %1").arg(reply.code));
        return reply.code;
    case Reply::good:
        break;
    }
    return 0;
}

void Model::startMonitor()
{
    say("[TOVIK IoT] Start Monitor ...");
    if (items_.empty())
        return;
    ++monitor_number_;
    begin(monitor_timer, second);
}

void Model::beginCycle()
{
    if (!connected_) {
        timers_[monitor_timer].runs = false;
        return;
    }
    monitored_.clear();
    Frame frame(Frame::cycle);
    frame.began = now_;
    askForValue(frame);
}

void Model::askForValue(Frame frame)
{
    if (frame.index == int(items_.size())) {
        ++cycles_;
        cycle_time_ = now_ - frame.began;
        longest_cycle_ = qMax(longest_cycle_, cycle_time_);
        return endCycle();
    }
    const Item& item = items_[std::size_t(frame.index)];
    frame.value = item.value;
    frame.post =
        post(Reply::read,
             QStringLiteral(R"({"dataitem_id":"%1","token":"%2"})").arg(item.served.id, token_));
    stack_.push_back(frame);
}

void Model::goOnCycle(Frame frame, const Reply& reply)
{
    int result = check(reply, Reply::read);
    if (result == 0 && reply.own == Reply::missing)
        result = fail("[TOVIK IoT] ReadDataitemValue Error: no value!");
    if (result != 0) {
        say("[TOVIK IoT] Stop monitor!");
        handleFailure(result);
        return endCycle();
    }
    const ServedItem& served = items_[std::size_t(frame.index)].served;
    bool is_taken = false;
    const QVariant value = values::fromService(served.type, reply.value, frame.value, &is_taken);
    monitored_.push_back({served.id, value, is_taken ? now_ : -1});
    ++reads_;
    ++frame.index;
    askForValue(frame);
}

void Model::endCycle()
{
    tell({true, 0, monitored_});
}

void Model::addWrite(int index, const QVariant& value)
{
    waiting_writes_.push_back({ForClient::write, index, value, 0});
    const bool waits = unanswered_writes_.empty() && !is_write_waited_for_;
    sendWrite();
    if (!waits)
        return;
    is_write_waited_for_ = true;
    awaited_write_ = unanswered_writes_.front();
    Frame frame(Frame::write_wait);
    frame.post = awaited_write_;
    stack_.push_back(frame);
}

/// The next write goes when the one before it is answered, or has been waited for long enough.
void Model::sendWrite()
{
    if (waiting_writes_.empty() || unanswered_writes_.size() == most_writes ||
        timers_[patience_timer].runs)
        return;
    const ForClient write = waiting_writes_.front();
    waiting_writes_.pop_front();
    const ServedItem& served = items_[std::size_t(write.index)].served;
    const QString value = values::toService(served.type, write.value);
    QString body = QStringLiteral(R"({"dataitem_id":"%1","token":"%2")").arg(served.id, token_);
    if (!value.isEmpty())
        body += QLatin1String(R"(,"value":)") + value;
    unanswered_writes_.push_back(post(Reply::write, body + QLatin1Char('}')));
    begin(patience_timer, second);
}

void Model::endWrite(int number, const Reply& reply)
{
    if (number == awaited_write_)
        awaited_write_ = -1;
    if (number == unanswered_writes_.back())
        timers_[patience_timer].runs = false;
    unanswered_writes_.erase(
        std::find(unanswered_writes_.begin(), unanswered_writes_.end(), number));
    const int result = check(reply, Reply::write);
    if (result == 0) {
        ++writes_;
        say("[TOVIK IoT] Write value done!");
        return;
    }
    ++failed_writes_;
    say("[TOVIK IoT] Write value fail!");
    handleFailure(result);
}

void Model::failed(int result)
{
    last_error_ = result;
    failed_at_ = now_;
}

/// The connection counts as lost. What the reconnect timer had waited is not lost with it.
void Model::handleFailure(int result)
{
    const Timer before = timers_[reconnect_timer];
    failed(result);
    disconnect();
    tell({false, result, {}});
    startReconnect();
    Timer& timer = timers_[reconnect_timer];
    if (before.runs && timer.runs)
        timer.due = qMin(timer.due, before.due);
}

/// A closed driver says nothing more.
void Model::send(ForClient::Kind kind, int index, const QVariant& value)
{
    if (!is_closed_)
        to_client_.push_back({kind, index, value, ++sent_});
}

/// Nor does it hear anything. A host that takes nothing for long gets the values of the last cycles
/// together.
void Model::tell(const ForHost& message)
{
    if (message.is_values && untaken() >= 8)
        return kept_.push_back(message);
    if (!is_closed_)
        to_host_.push_back(message);
}
