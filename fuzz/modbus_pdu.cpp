#include "fuzz/modbus_answers.h"
#include "fuzz/target.h"

#include "examples/modbus/modbus_status.h"

namespace fuzz {

// The request, then its answer.
void runModbusPdu(const QByteArray& input)
{
    Input next(input);
    modbus::Request request = takeRequest(&next);
    const int largest_pdu = 253;
    const QByteArray sent = modbus::buildPdu(request.pdu);
    require(sent.size() >= 5 && sent.size() <= largest_pdu, "a request fits into a frame");
    require(modbus::answerPduSize(request.pdu) <= largest_pdu, "an answer fits into a frame");
    require(modbus::checkAnswerPdu(request.pdu, goodAnswer(request)) == modbus::Ok,
            "a good answer is taken");

    modbus::Answer answer;
    answer.pdu = next.rest();
    answer.status = modbus::checkAnswerPdu(request.pdu, answer.pdu);
    checkAnswer(request, answer);
    require((modbus::byteAt(answer.pdu, 0) & modbus::exception_flag) == 0 || answer.pdu.isEmpty() ||
                answer.status != modbus::Ok,
            "an exception is no good answer");
    if (answer.status == modbus::Ok && request.pdu.operation->registers &&
        request.pdu.operation->kind == modbus::Operation::Read) {
        request.bit = request.station % 16;
        const QByteArray bit = modbus::hostBytes(request, answer.pdu);
        require(bit.size() == 1 && (bit.at(0) == 0 || bit.at(0) == 1), "a bit is 0 or 1");
    }
}

} // namespace fuzz
