#ifndef MODBUS_FRAMING_H
#define MODBUS_FRAMING_H

#include "modbus_request.h"

#include <QByteArray>

namespace modbus {

/// An answer that was found in the input.
struct Answer
{
    int status = 0; ///< Ok, an exception, or what is wrong with it.
    QByteArray pdu;
};

/// How requests are wrapped for one kind of link, and how the answer to the latest one is found in
/// whatever comes from it. Knows no link and no time: it is fed with bytes, in any portions.
class Framing
{
public:
    virtual ~Framing();

    /// The frame of \a request, whose answer take() looks for from now on.
    virtual QByteArray frame(const Request& request) = 0;
    /// To be called once the frame has been sent: what came before is no answer to it.
    virtual void dropOldInput() = 0;
    /// The size of the whole answer, unless that is an exception.
    virtual int answerSize() const = 0;
    /// Takes the answer to the latest request out of the input; false if it has not come yet.
    /// Whatever is in its way goes with it.
    virtual bool take(Answer* answer) = 0;
    /// The last word when the time is over: an answer that only a closer look finds, or in its
    /// status what came instead; NoAnswerInTime if that says nothing.
    virtual Answer giveUp() = 0;

    /// Adds input.
    void add(const QByteArray& bytes);
    /// Forgets the input: it belonged to a connection that is gone.
    void reset();

protected:
    Request request_;
    QByteArray input_;
};

} // namespace modbus

#endif
