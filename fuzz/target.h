#ifndef FUZZ_TARGET_H
#define FUZZ_TARGET_H

#include <QByteArray>

/// \file
/// What is fed with malformed input: one function for each reader of the library and of the Modbus
/// example.
///
/// A target takes any bytes. Beside what the sanitizers see, it checks what must hold whatever the
/// bytes are. scripts/fuzz runs each with libFuzzer; tests/fuzz runs all on the stored inputs.
namespace fuzz {

/// Raised by require(). No standard exception: targets catch those that the library may raise.
struct Violation
{
    const char* property;
};

/// Raises a Violation unless \a property, said in words, holds.
inline void require(bool holds, const char* property)
{
    if (!holds)
        throw Violation{property};
}

/// Reads a stored configuration in any stream version, and writes it again.
void runStream(const QByteArray& input);
/// Reads what the service replies to a login or a write, and makes a request of it.
void runReply(const QByteArray& input);
/// Reads a list of groups.
void runGroups(const QByteArray& input);
/// Reads a list of data items.
void runDataitems(const QByteArray& input);
/// Reads a value of any type, and turns it into the host's bytes.
void runValue(const QByteArray& input);
/// Takes the host's bytes as a value of any type, and turns it back.
void runHostBytes(const QByteArray& input);
/// Every operation of ProtocolBasic.
void runProtocol(const QByteArray& input);
/// Plans a Modbus request for any address, settings and data.
void runModbusRequest(const QByteArray& input);
/// Checks the PDU that answers a Modbus request.
void runModbusPdu(const QByteArray& input);
/// Looks for the answer to a Modbus request on a serial line.
void runModbusRtu(const QByteArray& input);
/// Looks for the answer to a Modbus request on a TCP connection.
void runModbusTcp(const QByteArray& input);

/// Takes the certificate out of a TLS session.
void runSession(const QByteArray& input);

/// A target by name.
struct Target
{
    const char* name;
    void (*run)(const QByteArray& input);
};

/// All of the above.
extern const Target targets[];
extern const int target_count;

} // namespace fuzz

#endif
