#include "modbus_pdu.h"

#include "framework/protocol_basic.h"
#include "modbus_status.h"

namespace modbus {

namespace {

// Arguments of ProtocolBasic: the protocol sends the most significant byte first, and no text.
const int most_significant_first = 0;
const int raw = 0;

const int write_answer_size = 5;
const int write_many_head = 6;
const int coil_on = 0xFF00;

const Operation operations[] = {
    {1, Operation::Read, false, 2000},       {2, Operation::Read, false, 2000},
    {3, Operation::Read, true, 125},         {4, Operation::Read, true, 125},
    {5, Operation::WriteOne, false, 1},      {6, Operation::WriteOne, true, 1},
    {15, Operation::WriteMany, false, 1968}, {16, Operation::WriteMany, true, 123},
};

int sizeOfValues(const PduRequest& request)
{
    return request.operation->registers ? request.count * 2 : (request.count + 7) / 8;
}

/// The value of a write of one element: a coil has numbers of its own for on and off.
int onlyValue(const PduRequest& request)
{
    if (request.operation->registers)
        return numberAt(request.values, 0);
    return byteAt(request.values, 0) == 1 ? coil_on : 0;
}

} // namespace

void addByte(QByteArray& bytes, int value)
{
    ProtocolBasic::addNumber(bytes, static_cast<unsigned char>(value), raw);
}

void addNumber(QByteArray& bytes, int value)
{
    ProtocolBasic::addNumber(bytes, static_cast<unsigned short>(value), most_significant_first,
                             raw);
}

int numberAt(const QByteArray& bytes, int offset)
{
    if (offset + 2 > bytes.size())
        return 0;
    const auto byte = [&bytes](int at) { return static_cast<unsigned char>(bytes.at(at)); };
    return byte(offset) << 8 | byte(offset + 1);
}

int byteAt(const QByteArray& bytes, int offset)
{
    return offset < bytes.size() ? static_cast<unsigned char>(bytes.at(offset)) : -1;
}

const Operation* operationOf(int function)
{
    for (const Operation& operation : operations) {
        if (operation.function == function)
            return &operation;
    }
    return nullptr;
}

QByteArray buildPdu(const PduRequest& request)
{
    QByteArray pdu;
    pdu.reserve(write_many_head + request.values.size());
    addByte(pdu, request.operation->function);
    addNumber(pdu, request.start);
    addNumber(pdu,
              request.operation->kind == Operation::WriteOne ? onlyValue(request) : request.count);
    if (request.operation->kind == Operation::WriteMany) {
        addByte(pdu, request.values.size());
        pdu.append(request.values);
    }
    return pdu;
}

int answerPduSize(const PduRequest& request)
{
    return request.operation->kind == Operation::Read ? 2 + sizeOfValues(request)
                                                      : write_answer_size;
}

int checkAnswerPdu(const PduRequest& request, const QByteArray& pdu)
{
    const int function = byteAt(pdu, 0);
    if (function == (request.operation->function | exception_flag))
        return pdu.size() == exception_pdu_size ? Exception + byteAt(pdu, 1) : int(BadAnswerLength);
    if (function != request.operation->function)
        return OtherFunction;
    if (pdu.size() != answerPduSize(request))
        return BadAnswerLength;
    if (request.operation->kind == Operation::Read)
        return byteAt(pdu, 1) == sizeOfValues(request) ? Ok : BadAnswerLength;
    // A write is answered by its own first bytes: where, and what or how many.
    return buildPdu(request).startsWith(pdu) ? Ok : OtherContent;
}

QByteArray answerValues(const QByteArray& pdu)
{
    return pdu.mid(2);
}

} // namespace modbus
