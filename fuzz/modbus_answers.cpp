#include "fuzz/modbus_answers.h"

#include "examples/modbus/modbus_status.h"
#include "fuzz/target.h"

namespace fuzz {

modbus::Request takeRequest(Input* input)
{
    const int functions[] = {1, 2, 3, 4, 5, 6, 15, 16};
    modbus::Request request;
    const int choice = input->byte();
    modbus::PduRequest& pdu = request.pdu;
    pdu.operation = modbus::operationOf(functions[choice % 8]);
    request.element_size = (choice & 8) != 0 ? 4 : 2;
    request.order = choice >> 4 & 3;
    request.station = input->byte() % 248;
    pdu.start = input->number16();
    const int whole = pdu.operation->registers ? request.element_size / 2 : 1;
    // Mostly few: large frames take long and show little more.
    const int count = input->number16();
    pdu.count = 1 + (count < 0xC000 ? count % 16 : count % pdu.operation->largest);
    if (pdu.operation->kind == modbus::Operation::WriteOne)
        pdu.count = 1;
    else if (pdu.count % whole != 0)
        ++pdu.count;
    pdu.count = qMin(pdu.count, pdu.operation->largest / whole * whole);
    if (pdu.operation->kind != modbus::Operation::Read) {
        const int size = pdu.operation->registers ? 2 * pdu.count : (pdu.count + 7) / 8;
        pdu.values = QByteArray(size, char(choice & 1));
    }
    return request;
}

QByteArray goodAnswer(const modbus::Request& request)
{
    const modbus::PduRequest& pdu = request.pdu;
    if (pdu.operation->kind != modbus::Operation::Read)
        return modbus::buildPdu(pdu).left(5);
    const int size = modbus::answerPduSize(pdu);
    return QByteArray(1, char(pdu.operation->function)) + char(size - 2) +
           QByteArray(size - 2, '\x5A');
}

bool takeInPortions(int portion, Input* input, modbus::Framing* framing, QByteArray* come,
                    modbus::Answer* answer)
{
    while (!input->isEmpty()) {
        const QByteArray bytes = input->bytes(portion);
        come->append(bytes);
        framing->add(bytes);
        if (framing->take(answer))
            return true;
    }
    return false;
}

bool isAnswer(int status)
{
    return status == modbus::Ok || modbus::isException(status);
}

bool isWrongAnswer(int status)
{
    return status == modbus::OtherFunction || status == modbus::OtherContent ||
           status == modbus::BadAnswerLength || status == modbus::OtherStation;
}

void checkAnswer(const modbus::Request& request, const modbus::Answer& answer)
{
    require(isAnswer(answer.status) || isWrongAnswer(answer.status),
            "an answer is good, an exception, or says what is wrong");
    if (answer.status == modbus::OtherStation)
        return;
    require(modbus::checkAnswerPdu(request.pdu, answer.pdu) == answer.status,
            "an answer says of itself what its PDU says");
    if (answer.status != modbus::Ok || request.pdu.operation->kind != modbus::Operation::Read)
        return;
    const int count = request.pdu.count;
    require(modbus::hostBytes(request, answer.pdu).size() ==
                (request.pdu.operation->registers ? 2 * count : count),
            "a good answer to a read has the bytes that were asked for");
}

} // namespace fuzz
