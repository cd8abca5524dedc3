#include "tests/reliability/fault_matrix/cell_run.h"

#include <QTest>

#include <ctime>
#include <limits>

namespace fault_matrix {

namespace {

// What the watched item holds before, during and after the fault.
constexpr int before = 65;
constexpr int during = 66;
constexpr int after = 80;
constexpr int steady = 7;
constexpr double start_limit = 30;

QByteArray bytesOf(int value)
{
    QByteArray bytes;
    bytes.append(char(value & 0xFF));
    bytes.append(char((value >> 8) & 0xFF));
    return bytes;
}

int valueOf(const QByteArray& bytes)
{
    return bytes.size() == 2 ? uchar(bytes.at(0)) + 256 * uchar(bytes.at(1)) : -1;
}

/// Processor time of this thread.
double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

} // namespace

CellRun::CellRun(const Cell& cell, const Limits& limits)
    : cell_(cell),
      limits_(limits),
      expected_(expectationFor(cell))
{
    // The last words of a process are wanted; what is recorded would go with it.
    if (expected_.outcome != Outcome::Dies)
        log_.reset(new LogRecorder);
    host_.property.host = QString::fromStdString(cloud_.url());
    host_.property.project = latin1("plant");
    host_.property.email = latin1("operator@example.com");
    host_.property.password = latin1("tovik");
    host_.serve("Watched", "watched", "16Bit-INT");
    host_.serve("Steady", "steady", "16Bit-INT");
    host_.serve("Setpoint", "setpoint", "16Bit-INT");
    if (cell.operation == Operation::OddWrite)
        host_.serve("Level", "level", "32Bit-FLOAT");
    if (cell.operation == Operation::OddReply)
        answerOddly();
}

/// Another service takes the place of the simulated one, which would not say such things.
void CellRun::answerOddly()
{
    static const QMap<QString, QByteArray> logins{
        {latin1("array"), "[]"}, {latin1("number"), "5"}, {latin1("text"), "\"text\""}};
    const QByteArray login = logins.value(cell_.fault, R"({"errorcode":0,"token":"t"})");
    const bool groups_are_odd = cell_.fault == latin1("group-no-object");
    odd_cloud_.setHandler([login, groups_are_odd](const ScriptedRequest& request) {
        if (request.path.endsWith("/login"))
            return ScriptedReply::json(login);
        if (request.path.endsWith("/list") && groups_are_odd)
            return ScriptedReply::json(R"({"errorcode":0,"Number":1,"groups":[5]})");
        if (request.path.endsWith("/list"))
            return ScriptedReply::json(
                R"({"errorcode":0,"Number":1,"groups":[{"group_id":"g","name":"G"}]})");
        return ScriptedReply::json(R"({"errorcode":0,"Number":1,"dataitems":[5]})");
    });
    host_.property.host = odd_cloud_.url();
}

Measurement CellRun::run()
{
    if (cell_.operation == Operation::Start || cell_.operation == Operation::OddReply) {
        is_.began = true;
        strike();
        startDriver();
    } else {
        startDriver();
        clock_.start();
        lookUntil(start_limit, [this] { return isUpToDate(before); });
        is_.began = isUpToDate(before);
        strike();
    }
    hold();
    lift();
    recover();
    closeAmid();
    return is_;
}

void CellRun::startDriver()
{
    const Handling handling = cell_.handling;
    const int type = handling == Handling::Type0   ? 0
                     : handling == Handling::Type2 ? 2
                     : handling == Handling::Type3 ? 3
                                                   : 1;
    HostSide::setErrorHandling(&host_.link, type, return_time, handling == Handling::Type1Timed,
                               handling == Handling::Type1Switch);
    host_.start();
}

/// Puts the fault in force, and sees to it that what it strikes happens.
void CellRun::strike()
{
    clock_.start();
    if (!isOdd(cell_.operation))
        fault_ = cloud_.addFault(withPath(cell_.fault, cell_.operation).toStdString());
    if (needsReconnect(cell_.operation) || (host_.driver && cell_.operation == Operation::Start))
        cloud_.expireTokens();
    if (cell_.operation == Operation::Write)
        writeSetpoint();
    if (cell_.operation == Operation::OddWrite) {
        using Numbers = std::numeric_limits<float>;
        const float number =
            cell_.fault == latin1("nan") ? Numbers::quiet_NaN() : Numbers::infinity();
        host_.write("Level", QByteArray(reinterpret_cast<const char*>(&number), sizeof(number)));
    }
}

/// What happens while the fault is in force.
void CellRun::hold()
{
    if (log_)
        log_->take();
    status_ = 0;
    double limit = expected_.hold_at_least;
    if (expected_.isSeen())
        limit = qMax(limit, expected_.seen_within);
    if (expected_.goes_on)
        limit = qMax(limit, expected_.on_within);
    lookUntil(limit + 3 * limits_.slack, [this] {
        if (is_.struck < 0 && hasStruck()) {
            is_.struck = now();
            cloud_.set("watched", during);
        }
        if (is_.seen < 0 && is_.struck >= 0 && expected_.isSeen() && status_ == expected_.status)
            is_.seen = now();
        if (is_.on < 0 && isUpToDate(during))
            is_.on = now();
        const bool shown = !expected_.isSeen() || is_.seen >= 0;
        const bool went_on = !expected_.goes_on || is_.on >= 0;
        return now() >= expected_.hold_at_least && is_.struck >= 0 && shown && went_on;
    });
    is_.held = now();
    is_.left_with = status_;
    if (log_)
        is_.attempts = log_->count("[TOVIK IoT] Try Reconnect ... ");
}

void CellRun::lift()
{
    cloud_.clearFaults();
    cloud_.set("watched", after);
    clock_.start();
}

void CellRun::recover()
{
    constexpr double never = 3;
    const double limit = expected_.recovers ? expected_.back_within + 3 * limits_.slack : never;
    lookUntil(limit, [this] {
        if (is_.back < 0 && isUpToDate(after))
            is_.back = now();
        return is_.back >= 0;
    });
}

/// Closes while the fault, once more, has hold of a request.
void CellRun::closeAmid()
{
    if (is_.back >= 0) {
        strike();
        const double limit = expected_.seen_within + 3 * limits_.slack;
        while (!hasStruck() && now() < limit) {
            QTest::qWait(5);
            if (now() * 1e3 > looks_ * read_period)
                look();
        }
        is_.closed_amid = hasStruck();
    }
    clock_.start();
    host_.close();
    is_.close = now();
    look();
    writeSetpoint();
    QTest::qWait(20);
    host_.driver.reset();
    is_.answers = host_.answerCount();
}

bool CellRun::hasStruck() const
{
    // A closed port has no requests to count.
    return kindOf(cell_.fault) == latin1("refuse") ? status_ != 0 : cloud_.applied(fault_) > 0;
}

/// Whether the host sees what the plant holds.
bool CellRun::isUpToDate(int watched)
{
    return status_ == 0 && cached_.value(latin1("watched")) == watched &&
           cached_.value(latin1("steady")) == steady &&
           cached_.value(latin1("setpoint")) == cloud_.value("setpoint");
}

/// The host reads once in a period, until \a done or the limit in seconds.
void CellRun::lookUntil(double limit, const std::function<bool()>& done)
{
    looks_ = 0;
    look();
    while (!done() && now() < limit) {
        QTest::qWait(10);
        if (now() * 1e3 > looks_ * read_period)
            look();
    }
}

/// Reads under an error ask for a reconnect, so there is only one of them in a period; without one
/// all items are looked at.
void CellRun::look()
{
    ++looks_;
    const bool other = status_ != 0 && looks_ % 2;
    if (!other)
        note(ask([this] { return host_.read("Watched"); }), "watched", {before, during, after});
    if (other || status_ == 0)
        note(ask([this] { return host_.read("Steady"); }), "steady", {steady});
    if (status_ == 0)
        note(ask([this] { return host_.read("Setpoint"); }), "setpoint",
             {20, written_, cloud_.value("setpoint")});
}

/// \param values what the cache may hold; nothing is all right as long as nothing has been there.
void CellRun::note(const DriverAnswer& answer, const char* item, QList<int> values)
{
    status_ = answer.status;
    if (!is_.statuses.contains(status_) && fault_ > 0 && is_.held <= 0)
        is_.statuses.append(status_);
    const QString name = latin1(item);
    const int value = valueOf(answer.bytes);
    const int last = cached_.value(name, 0);
    const bool empty = value == 0 && last == 0;
    const bool older = name != latin1("setpoint") && value < last;
    if (!empty && (older || !values.contains(value)))
        is_.lost.append(latin1("%1 became %2, was %3").arg(name).arg(value).arg(last));
    cached_[name] = value;
}

DriverAnswer CellRun::ask(const std::function<DriverAnswer()>& request)
{
    QElapsedTimer timer;
    timer.start();
    const double work = threadSeconds();
    const DriverAnswer answer = request();
    is_.longest_work = qMax(is_.longest_work, threadSeconds() - work);
    is_.longest_answer = qMax(is_.longest_answer, double(timer.nsecsElapsed()) / 1e9);
    ++is_.requests;
    if (answer.status == -1)
        ++is_.astray;
    return answer;
}

void CellRun::writeSetpoint()
{
    ++written_;
    status_ = ask([this] { return host_.write("Setpoint", bytesOf(written_)); }).status;
}

double CellRun::now() const
{
    return double(clock_.nsecsElapsed()) / 1e9;
}

} // namespace fault_matrix
