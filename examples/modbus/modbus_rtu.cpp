#include "modbus_rtu.h"

#include "framework/protocol_basic.h"
#include "modbus_status.h"

namespace modbus {

namespace {

const unsigned polynomial = 0xA001;

// Arguments of ProtocolBasic.
const int least_significant_first = 1;
const int raw = 0;

const int around_pdu = 3;          // the station and two bytes of checksum
const int smallest_frame_size = 4; // with a function code alone

/// Whether \a frame ends with the checksum of what stands before.
bool hasGoodChecksum(const QByteArray& frame)
{
    return frame.size() >= smallest_frame_size && crc16(frame) == 0;
}

} // namespace

unsigned short crc16(const QByteArray& bytes)
{
    unsigned crc = 0xFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? (crc >> 1) ^ polynomial : crc >> 1;
    }
    return static_cast<unsigned short>(crc);
}

QByteArray rtuFrame(int station, const QByteArray& pdu)
{
    QByteArray frame;
    addByte(frame, station);
    frame.append(pdu);
    ProtocolBasic::addNumber(frame, crc16(frame), least_significant_first, raw);
    return frame;
}

QByteArray RtuFraming::frame(const Request& request)
{
    request_ = request;
    return rtuFrame(request.station, buildPdu(request.pdu));
}

void RtuFraming::dropOldInput()
{
    reset();
}

int RtuFraming::answerSize() const
{
    return answerPduSize(request_.pdu) + around_pdu;
}

bool RtuFraming::isAnswerAt(int offset, int pdu_size, Answer* answer) const
{
    const int size = pdu_size + around_pdu;
    if (byteAt(input_, offset) != request_.station || offset + size > input_.size())
        return false;
    const QByteArray pdu = input_.mid(offset + 1, pdu_size);
    const int status = checkAnswerPdu(request_.pdu, pdu);
    if ((status != Ok && !isException(status)) || !hasGoodChecksum(input_.mid(offset, size)))
        return false;
    answer->status = status;
    answer->pdu = pdu;
    return true;
}

bool RtuFraming::take(Answer* answer)
{
    for (int offset = 0; offset < input_.size(); ++offset) {
        for (const int pdu_size : {exception_pdu_size, answerPduSize(request_.pdu)}) {
            if (isAnswerAt(offset, pdu_size, answer)) {
                input_.remove(0, offset + pdu_size + around_pdu);
                return true;
            }
        }
    }
    return false;
}

Answer RtuFraming::giveUp()
{
    Answer answer;
    answer.status = failure();
    return answer;
}

int RtuFraming::failure() const
{
    if (input_.isEmpty())
        return NoAnswerInTime;
    if (!hasGoodChecksum(input_)) {
        const bool begun = byteAt(input_, 0) == request_.station && input_.size() < answerSize();
        return begun ? BadAnswerLength : BadChecksum;
    }
    if (byteAt(input_, 0) != request_.station)
        return OtherStation;
    return checkAnswerPdu(request_.pdu, input_.mid(1, input_.size() - around_pdu));
}

} // namespace modbus
