#include "modbus_tcp.h"

#include "modbus_status.h"

namespace modbus {

namespace {

// The header: transaction, protocol, length, each of two bytes, and the unit.
const int protocol_at = 2;
const int length_at = 4;
const int unit_at = 6;
const int pdu_at = 7;
// What the length counts: the unit and a PDU of 1 to 253 bytes.
const int smallest_length = 2;
const int largest_length = 254;

const int largest_frame = 260;

const int transactions = 0x10000;

/// The function code of an answer and the size that goes with it.
struct PduStart
{
    int function;
    int size;
};

} // namespace

QByteArray tcpFrame(int transaction, int unit, const QByteArray& pdu)
{
    QByteArray frame;
    frame.reserve(pdu_at + pdu.size());
    addNumber(frame, transaction);
    addNumber(frame, 0);
    addNumber(frame, pdu.size() + 1);
    addByte(frame, unit);
    frame.append(pdu);
    return frame;
}

QByteArray TcpFraming::frame(const Request& request)
{
    request_ = request;
    transaction_ = (transaction_ + 1) % transactions;
    return tcpFrame(transaction_, request.station, buildPdu(request.pdu));
}

int TcpFraming::answerSize() const
{
    return pdu_at + answerPduSize(request_.pdu);
}

bool TcpFraming::beginsWithHeader() const
{
    if (input_.size() < pdu_at)
        return true;
    const int length = numberAt(input_, length_at);
    return numberAt(input_, protocol_at) == 0 && length >= smallest_length &&
           length <= largest_length;
}

bool TcpFraming::takeFirst(QByteArray* frame)
{
    const int size = unit_at + numberAt(input_, length_at);
    if (input_.size() < qMax(size, pdu_at) || !beginsWithHeader())
        return false;
    *frame = input_.left(size);
    input_.remove(0, size);
    return true;
}

void TcpFraming::dropOldInput()
{
    QByteArray old;
    while (takeFirst(&old)) {
    }
    if (!beginsWithHeader())
        reset();
    passed_over_.clear();
    is_in_step_ = input_.isEmpty();
}

bool TcpFraming::takeFromAnywhere(Answer* answer)
{
    const QByteArray all = passed_over_ + input_;
    const int function = request_.pdu.operation->function;
    const PduStart starts[] = {{function, answerPduSize(request_.pdu)},
                               {function | exception_flag, exception_pdu_size}};
    for (const PduStart& start : starts) {
        QByteArray frame = tcpFrame(transaction_, request_.station, QByteArray(start.size, '\0'));
        frame[pdu_at] = static_cast<char>(start.function);
        const int found = all.indexOf(frame.left(pdu_at + 1));
        if (found < 0 || found + frame.size() > all.size())
            continue;
        *answer = judge(all.mid(found, frame.size()));
        input_ = all.mid(found + frame.size());
        passed_over_.clear();
        return true;
    }
    return false;
}

Answer TcpFraming::judge(const QByteArray& frame) const
{
    Answer answer;
    answer.pdu = frame.mid(pdu_at);
    answer.status = byteAt(frame, unit_at) == request_.station
                        ? checkAnswerPdu(request_.pdu, answer.pdu)
                        : int(OtherStation);
    return answer;
}

bool TcpFraming::take(Answer* answer)
{
    QByteArray frame;
    while (takeFirst(&frame)) {
        if (numberAt(frame, 0) == transaction_) {
            *answer = judge(frame);
            if (is_in_step_ || answer->status == Ok || isException(answer->status))
                return true;
        }
        passed_over_ = (passed_over_ + frame).right(2 * largest_frame);
    }
    if (is_in_step_ && beginsWithHeader())
        return false;
    return takeFromAnywhere(answer);
}

Answer TcpFraming::giveUp()
{
    Answer answer;
    if (!takeFromAnywhere(&answer))
        answer.status = failure();
    return answer;
}

int TcpFraming::failure() const
{
    if (input_.size() < protocol_at || numberAt(input_, 0) != transaction_)
        return NoAnswerInTime;
    return numberAt(input_, protocol_at) == 0 ? BadAnswerLength : NotModbus;
}

} // namespace modbus
