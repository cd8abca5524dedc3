#ifndef TESTS_RELIABILITY_HISTORIES_EXCHANGE_H
#define TESTS_RELIABILITY_HISTORIES_EXCHANGE_H

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <deque>
#include <vector>

/// \file
/// Histories of DriverBasic: what its device does, what its hooks say, and what the host asks.

/// What happens some milliseconds after a request has been sent.
struct Happening
{
    enum Kind
    {
        input,
        loss,    ///< Of the link.
        stop,    ///< The host sets the stop flag.
        unserve, ///< The host gives all units but one up.
    };

    int after;
    Kind kind;
    QByteArray bytes = {};
};

/// How one attempt goes: what the driver's hooks say, and what happens meanwhile.
struct Behaviour
{
    static const int expected = 4; ///< The length of an answer.

    enum Wait
    {
        for_bytes,
        for_line,
        own_code ///< request_send_wait() says wait_code at once.
    };

    int built = expected;
    int build_code = 0;
    Wait wait = for_bytes;
    int wait_code = 0;
    bool own_ready = false;
    int abnormal_code = 0x400A0002;
    int parse_code = 0;
    std::vector<Happening> happenings = {};
};

struct ExchangeEvent
{
    enum Kind
    {
        behave, ///< The next attempt of which nothing has been said goes as kind a, time b.
        read,   ///< In the name of unit a.
        write,
        raw,   ///< A transparent request.
        input, ///< a bytes come that nobody has asked for.
        link,  ///< The link is lost (0) or there again (1).
        units, ///< The host's unit list becomes list a.
        stop   ///< The host sets the stop flag.
    };

    Kind kind;
    int a = 0;
    int b = 0;
};

struct ExchangeHistory
{
    int retries = 0;
    int delay = 0;
    int timeout = 10;
    bool has_state = false; ///< The link calls itself connected, and so cannot wait by itself.
    std::vector<ExchangeEvent> events;

    QString text() const;
    static ExchangeHistory fromText(const QString& text, QString* problem);
};

namespace exchange {

const int behaviours = 22;
const int unit_names = 5;
const int unit_lists = 5;

Behaviour behaviour(int kind, int time);
QString unitName(int number);
QStringList unitList(int number);

/// What library and model stand on, each with one of its own: a device, and a host that changes its
/// mind.
class World
{
public:
    /// Something is written on the link, at this moment.
    void sent(const Behaviour& behaviour);
    /// What has been said of the next attempt.
    Behaviour next();
    /// Lets everything happen up to \a now.
    void reach(qint64 now);

    qint64 now = 0;
    std::deque<Behaviour> planned;
    QByteArray input; ///< Waits on the link.
    bool is_lost = false;
    bool is_stopped = false;
    QStringList units;

private:
    struct Due
    {
        qint64 at;
        Happening happening;
    };

    std::deque<Due> due_; ///< In the order in which they happen.
};

} // namespace exchange

#endif
