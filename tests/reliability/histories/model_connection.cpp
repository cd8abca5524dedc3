#include "tests/reliability/histories/model.h"

// Attempts to connect, and the end of a connection.

namespace {

/// Of the group list and of an item list, by what is wrong with it.
const char* const complaints[2][3] = {
    {"[TOVIK IoT] GetGroupList Error: no Number/groups!",
     "[TOVIK IoT] GetGroupList Error: group number invalid!",
     "[TOVIK IoT] GetGroupList Error: groups is not array!"},
    {"[TOVIK IoT] GetDataitemList Error: no Number/dataitems!",
     "[TOVIK IoT] GetDataitemList Error: dataitem number invalid!",
     "[TOVIK IoT] GetDataitemList Respond Error: dataitems is not array!"},
};

} // namespace

void Model::beginAttempt(bool is_initial)
{
    if (is_initial) {
        say("[TOVIK IoT] Initializing ... ");
        has_reconnect_timer_ = true;
    } else {
        say("[TOVIK IoT] Try Reconnect ... ");
    }
    ++attempts_;
    say("[TOVIK IoT] Connecting to Cloud ... ");
    Frame frame(Frame::attempt);
    frame.is_initial = is_initial;
    frame.post = post(Reply::login,
                      QStringLiteral(R"({"email":"a@b","password":"secret","project":"Plant"})"));
    stack_.push_back(frame);
}

void Model::goOnAttempt(Frame frame, const Reply& reply)
{
    const int result = check(reply, frame.stage);
    if (result != 0)
        return endAttempt(frame, result);
    if (frame.stage == Reply::login) {
        if (reply.own == Reply::missing)
            return endAttempt(frame, fail("[TOVIK IoT] Login Error: no token!"));
        if (reply.own == Reply::invalid)
            return endAttempt(frame, fail("[TOVIK IoT] Login Error: token invalid!"));
        token_ = reply.token;
        if (token_.isEmpty())
            return endAttempt(frame, detected);
        frame.token = token_;
        frame.stage = Reply::groups;
        frame.post = post(Reply::groups, QStringLiteral(R"({"token":"%1"})").arg(token_));
        return stack_.push_back(frame);
    }
    const bool is_groups = frame.stage == Reply::groups;
    if (reply.own != Reply::fine && reply.own != Reply::nothing) {
        const char* const complaint = complaints[is_groups ? 0 : 1][reply.own - Reply::missing];
        return endAttempt(frame, fail(complaint));
    }
    if (is_groups) {
        if (reply.own == Reply::nothing)
            say("[TOVIK IoT] Warning: no group!");
        frame.groups = reply.names;
    } else {
        const QString name = frame.groups.takeFirst().section(QLatin1Char(' '), 1);
        if (reply.own == Reply::nothing)
            say(QStringLiteral("[TOVIK IoT] Warning: Group  %1 : no dataitem!")
                    .arg(QLatin1Char('"') + name + QLatin1Char('"')));
    }
    askForItems(frame);
}

void Model::askForItems(Frame frame)
{
    if (frame.groups.isEmpty())
        return endAttempt(frame, 0);
    frame.stage = Reply::items;
    frame.post = post(Reply::items,
                      QStringLiteral(R"({"group_id":"%1","token":"%2"})")
                          .arg(frame.groups.first().section(QLatin1Char(' '), 0, 0), frame.token));
    stack_.push_back(frame);
}

void Model::endAttempt(const Frame& frame, int result)
{
    --attempts_;
    if (result != 0)
        failed(result);
    if (frame.is_initial) {
        say(result == 0 ? "[TOVIK IoT] Connected to Cloud Success!"
                        : "[TOVIK IoT] Connected to Cloud Fail!");
        if (result != 0) {
            connected_ = false;
            tell({false, result, {}});
            return startReconnect();
        }
    } else {
        tell({false, result, {}});
        if (result != 0)
            return;
        timers_[reconnect_timer].runs = false;
    }
    connected_ = true;
    reconnects_ = connections_++;
    startMonitor();
}

void Model::tryReconnect()
{
    if (connected_) {
        say("[TOVIK IoT] Already connected. Stop reconnect!");
        timers_[reconnect_timer].runs = false;
        return;
    }
    // One inside another is the most.
    if (attempts_ < 2)
        beginAttempt(false);
}

void Model::disconnect()
{
    say("[TOVIK IoT] Disconnecting to Cloud ...");
    timers_[monitor_timer].runs = false;
    timers_[reconnect_timer].runs = false;
    connected_ = false;
}

bool Model::reconnectsByTimer() const
{
    if (history_.type == 1)
        return history_.return_time_en;
    return history_.type == 0 || history_.type == 2;
}

void Model::startReconnect()
{
    say(QStringLiteral("[TOVIK IoT] Error handle type:  %1").arg(history_.type));
    if (!reconnectsByTimer())
        return;
    const int interval = history_.type == 1 ? second * history_.return_time : second;
    say(QStringLiteral("[TOVIK IoT] Reconnect by timer: %1 ms").arg(interval));
    if (!timers_[reconnect_timer].runs)
        begin(reconnect_timer, interval);
}
