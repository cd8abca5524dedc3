#ifndef MODBUS_REQUEST_H
#define MODBUS_REQUEST_H

#include "modbus_pdu.h"

#include <QByteArray>
#include <QString>

/// \file
/// From the host's request to the protocol's, and from the protocol's answer to the host's.
namespace modbus {

/// How frames travel; it decides which station numbers there are.
enum class Transport
{
    Rtu, ///< 1 to 247; 0 is a broadcast, which nobody answers.
    Tcp  ///< 0 to 255, each of which answers.
};

/// A request as the host makes it: the members of AddrData, and the bytes to be written.
struct HostRequest
{
    bool write;
    QString address;
    int field1;
    int data_length;
    QByteArray data;
    int station;
    int extra1;
    int extra2;
};

/// A request that has passed all checks.
struct Request
{
    PduRequest pdu;
    int station = 0;
    bool is_broadcast = false;
    int element_size = 2;
    int order = 0;
    int bit = -1; ///< The bit of the register that is to be read; -1: none.
};

/// Makes \a request of what the host asked for.
///
/// A write to a bit of a register is not one request but two: it is refused with BadAddress here.
/// \return Ok, or why the request is refused.
int planRequest(const HostRequest& asked, Transport transport, Request* request);

/// The bytes for the host from a good answer to a read.
QByteArray hostBytes(const Request& request, const QByteArray& pdu);

} // namespace modbus

#endif
