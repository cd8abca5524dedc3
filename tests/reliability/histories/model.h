#ifndef TESTS_RELIABILITY_HISTORIES_MODEL_H
#define TESTS_RELIABILITY_HISTORIES_MODEL_H

#include "tests/reliability/histories/history.h"
#include "tests/reliability/histories/reply.h"
#include "tests/reliability/histories/seen.h"

#include <QVariant>

#include <deque>
#include <map>

/// What the documents say of driver and client, as a machine: a state, and what each event does to
/// it. Shares nothing with the library.
///
/// The client's thread is a stack: whatever waits for a reply runs an event loop, in which
/// everything else may happen, and goes on when its reply is there and all above it has ended.
class Model
{
public:
    static const qint64 never;

    explicit Model(const History& history);

    void play(const Event& event, const Reply& reply);
    /// What has been seen since the last call.
    Seen take();

    bool isClosed() const { return is_closed_; }
    /// Outstanding requests, in the order of their sending.
    std::vector<Reply::Operation> outstanding() const;
    bool hasForHost() const { return !to_host_.empty(); }
    bool hasForClient() const { return !to_client_.empty(); }
    qint64 now() const { return now_; }
    qint64 nextDue() const;
    /// The state without its numbers: what is counted as different.
    QByteArray kindOfState() const;

private:
    static const int detected = 256; ///< The result of a failure that the client sees itself.
    static const int second = 1000;  ///< In milliseconds.

    Model() = default;

    enum TimerName
    {
        reconnect_timer,
        monitor_timer,
        patience_timer,
        no_timer
    };
    struct Timer
    {
        bool runs = false;
        qint64 due = 0;
        qint64 interval = 0;
        qint64 planned = 0; ///< Of two that are due together, the one that was planned first.
    };
    struct Monitored
    {
        QString id;
        QVariant value;
        qint64 read_at; ///< Or never, when the service's value was not the item's type.
    };
    struct ForHost
    {
        bool is_values;
        int result;
        std::vector<Monitored> values;
    };
    struct ForClient
    {
        enum Kind
        {
            initial,
            write,
            reconnect
        };
        Kind kind;
        int index;
        QVariant value;
        qint64 number; ///< In the order of their sending.
    };
    struct Post
    {
        Reply::Operation operation;
        bool is_answered;
        Reply reply;
    };
    struct Frame
    {
        enum Kind
        {
            delivery,  ///< What was queued is being delivered.
            shot,      ///< A timer's slot runs.
            attempt,   ///< To connect.
            cycle,     ///< Of the monitor.
            write_wait ///< For the first of the writes.
        };
        explicit Frame(Kind frame_kind) : kind(frame_kind) {}

        Kind kind;
        int post = -1;
        TimerName timer = no_timer;
        int timer_number = 0; ///< The monitor has a new one for each connection.
        bool is_initial = false;
        Reply::Operation stage = Reply::login;
        QString token;
        QStringList groups;
        int index = 0;
        QVariant value;
        qint64 began = 0;
    };
    struct Item
    {
        ServedItem served;
        QVariant value;
        qint64 taken_at;
    };

    // The host's side.
    void openDriver();
    void closeDriver();
    void readItem(const Event& event);
    void writeItem(const Event& event);
    void deliverToHost();
    void takeValues(const std::vector<Monitored>& values);
    int untaken() const;
    int findItem(int index, QString* name) const;
    void answer(const QByteArray& bytes);
    bool asksByReads() const;

    // The client.
    void proceed();
    void resume(const Frame& frame);
    void handle(const ForClient& message);
    void shoot();
    void begin(TimerName name, qint64 interval);
    int post(Reply::Operation operation, const QString& body);
    void answerPost(int index, const Reply& reply);
    int check(const Reply& reply, Reply::Operation operation);
    int fail(const char* words);
    void beginAttempt(bool is_initial);
    void goOnAttempt(Frame frame, const Reply& reply);
    void askForItems(Frame frame);
    void endAttempt(const Frame& frame, int result);
    void tryReconnect();
    void startMonitor();
    void beginCycle();
    void askForValue(Frame frame);
    void goOnCycle(Frame frame, const Reply& reply);
    void endCycle();
    void addWrite(int index, const QVariant& value);
    void sendWrite();
    void endWrite(int number, const Reply& reply);
    void failed(int result);
    void handleFailure(int result);
    void disconnect();
    void startReconnect();
    bool reconnectsByTimer() const;
    void tell(const ForHost& message);
    void send(ForClient::Kind kind, int index = 0, const QVariant& value = {});
    void say(const QString& line) { seen_.lines.append(line); }
    void say(const char* line) { say(QString::fromLatin1(line)); }

    History history_;
    Seen seen_;
    qint64 now_ = 0;
    qint64 planned_ = 0;

    // All that a new driver has anew.
    std::vector<Item> items_;
    int err_code_ = 0;
    int err_count_ = 0;
    bool is_closed_ = true;
    std::deque<ForHost> to_host_;
    std::vector<ForHost> kept_; ///< Values that go with the last of those.
    std::deque<ForClient> to_client_;
    qint64 sent_ = 0;
    qint64 deliverable_ = 0; ///< What had been sent when the latest delivery began.
    std::vector<Frame> stack_;
    bool quits_ = false;
    std::map<int, Post> posts_; ///< Without those that were used up.
    int post_count_ = 0;
    Timer timers_[3];
    bool has_reconnect_timer_ = false;
    bool reconnect_goes_off_ = false;
    int monitor_number_ = 0;
    QString token_;
    int attempts_ = 0;
    std::vector<Monitored> monitored_;
    std::deque<ForClient> waiting_writes_;
    std::deque<int> unanswered_writes_;
    bool is_write_waited_for_ = false;
    int awaited_write_ = -1;

    // What is counted.
    bool connected_ = false;
    int connections_ = 0;
    qint64 cycles_ = 0, cycle_time_ = -1, longest_cycle_ = -1, reads_ = 0, writes_ = 0,
           failed_writes_ = 0, reconnects_ = 0, last_error_ = 0, failed_at_ = -1;
};

#endif
