#ifndef MODBUS_PDU_H
#define MODBUS_PDU_H

#include <QByteArray>

/// \file
/// What a request and its answer say, whichever way they travel: a function code with its data.
namespace modbus {

/// One function of the protocol.
struct Operation
{
    enum Kind
    {
        Read,
        WriteOne,
        WriteMany
    };

    int function;
    Kind kind;
    bool registers; ///< Else bits.
    int largest;    ///< Elements that one frame can carry.
};

/// The operation of a function code: 1 to 6, 15 or 16; null for any other.
const Operation* operationOf(int function);

/// A request in the protocol's own terms.
struct PduRequest
{
    const Operation* operation = nullptr;
    int start = 0; ///< Address on the wire, 0 to 65535.
    int count = 0; ///< Bits or registers.
    /// What is to be written, as on the wire: registers most significant byte first, bits eight to
    /// a byte, the first the least significant. Empty for a read.
    QByteArray values;
};

/// The bytes of \a request: 03 00 10 00 02 reads two holding registers from address 16 on.
QByteArray buildPdu(const PduRequest& request);
/// The size of the answer to \a request unless that is an exception.
int answerPduSize(const PduRequest& request);
/// Whether \a pdu answers \a request: Ok, Exception with a code, or what is wrong with it.
int checkAnswerPdu(const PduRequest& request, const QByteArray& pdu);
/// What a good answer to a read carries, as on the wire.
QByteArray answerValues(const QByteArray& pdu);

/// The size of an exception, and the bit that marks one in the function code.
const int exception_pdu_size = 2;
const int exception_flag = 0x80;

/// Adds a number of one byte, or of two, most significant first.
void addByte(QByteArray& bytes, int value);
void addNumber(QByteArray& bytes, int value);
/// A number of two bytes that stand at \a offset, most significant first; 0 if they do not.
int numberAt(const QByteArray& bytes, int offset);
/// The byte at \a offset; -1 if there is none.
int byteAt(const QByteArray& bytes, int offset);

} // namespace modbus

#endif
