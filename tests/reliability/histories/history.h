#ifndef TESTS_RELIABILITY_HISTORIES_HISTORY_H
#define TESTS_RELIABILITY_HISTORIES_HISTORY_H

#include <QString>

#include <vector>

/// One thing that happens to a driver and its client. Where it cannot happen it is nothing, so that
/// any part of a history is one.
struct Event
{
    enum Kind
    {
        read,   ///< The host reads item a (the one after the last: an unknown name), b bytes long.
        write,  ///< The host writes the bytes of pattern b to item a, c times at once.
        host,   ///< What the client has sent reaches the host's side.
        client, ///< What the driver has sent reaches the client.
        timer,  ///< The client's next timer goes off.
        wait,   ///< a milliseconds pass, in which no timer is due.
        reply,  ///< The service answers the a-th outstanding request: kind b, variant c.
        close,  ///< The host closes the driver.
        open    ///< The host makes another driver on the same link, the one before being closed.
    };

    Kind kind;
    int a = 0;
    int b = 0;
    int c = 0;
};

/// How a driver is set up, and what happens then.
struct History
{
    int type = 1; ///< The error-handling type.
    int return_time = 1;
    bool return_time_en = true;
    bool restore_switch = true;
    std::vector<int> items; ///< Places in the list of item types; see itemOf().
    std::vector<Event> events;

    /// One line that reads back; what a test row says.
    QString text() const;
    /// \param problem what is wrong with the text, or nothing
    static History fromText(const QString& text, QString* problem);
};

/// A served item. After the types come twins: an item with the name, or with the id, of the first.
struct ServedItem
{
    QString name;
    QString id;
    QString type;
};

const int item_types = 12; ///< Eleven, and one that there is not.
const int item_choices = item_types + 2;

ServedItem itemOf(const History& history, int index);

/// The bytes of a write; patterns wrap around. Floats that are no number end the process, by
/// contract, and are none of them.
QByteArray writtenBytes(int pattern);

#endif
