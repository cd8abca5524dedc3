#ifndef MODBUS_TCP_H
#define MODBUS_TCP_H

#include "modbus_framing.h"

namespace modbus {

/// A TCP frame: transaction number, protocol 0, number of bytes after it, unit, PDU.
QByteArray tcpFrame(int transaction, int unit, const QByteArray& pdu);

/// Frames of a TCP connection.
///
/// Frames of other transactions, late answers to earlier requests above all, are passed over.
/// Whatever a device sends, it costs the request that it answers and no later one: if a frame was
/// cut or says a wrong length, the next answer is found by its header, which the request foretells
/// to the last byte.
class TcpFraming : public Framing
{
public:
    /// Each request has the next transaction number, from 1 on; 0 follows 65535.
    QByteArray frame(const Request& request) override;
    /// Keeps the beginning of a late answer: the rest of it is still to come.
    void dropOldInput() override;
    int answerSize() const override;
    bool take(Answer* answer) override;
    Answer giveUp() override;

private:
    /// Whether the input begins with a header, or what may become one.
    bool beginsWithHeader() const;
    /// Takes the first frame if it is complete and well-formed.
    bool takeFirst(QByteArray* frame);
    /// Takes the answer from wherever it stands, even among what has been passed over.
    bool takeFromAnywhere(Answer* answer);
    Answer judge(const QByteArray& frame) const;

    int failure() const;

    int transaction_ = 0;
    /// The end of what has been passed over since the request was sent.
    QByteArray passed_over_;
    /// Nothing was under way when the request was sent: so frames begin where they seem to.
    bool is_in_step_ = true;
};

} // namespace modbus

#endif
