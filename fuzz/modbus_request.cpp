#include "fuzz/input.h"
#include "fuzz/target.h"

#include "examples/modbus/modbus_address.h"
#include "examples/modbus/modbus_request.h"
#include "examples/modbus/modbus_status.h"
#include "examples/modbus/modbus_value.h"

namespace fuzz {

namespace {

bool isRefusal(int status)
{
    return (status >= modbus::BadAddress && status <= modbus::BroadcastRead) ||
           status == modbus::BadFunctionChoice;
}

/// A number that is often one of those that mean something.
int takeSetting(Input* input)
{
    const int number = input->byte();
    return number < 128 ? number % 8 : input->signed32();
}

void checkAddress(const QString& text)
{
    modbus::Address address;
    address.start = -7;
    const int status = modbus::parseAddress(text, &address);
    if (status != modbus::Ok) {
        require(status == modbus::BadAddress && address.start == -7 && !address.area,
                "a refused address changes nothing");
        return;
    }
    require(address.area && address.start >= 0 && address.start < modbus::area_size,
            "an address is within its area");
    require(address.bit >= -1 && address.bit < 16 && (address.bit < 0 || address.area->registers),
            "a bit is one of a register");
    QString same =
        QString::fromLatin1("%1x%2").arg(QLatin1Char(address.area->digit)).arg(address.start + 1);
    if (address.bit >= 0)
        same += QString::fromLatin1(".%1").arg(address.bit);
    modbus::Address again;
    require(modbus::parseAddress(same, &again) == modbus::Ok && again.area == address.area &&
                again.start == address.start && again.bit == address.bit,
            "an address comes back from its plain text");
}

void checkPlanned(const modbus::HostRequest& asked, const modbus::Request& request)
{
    const modbus::PduRequest& pdu = request.pdu;
    require(pdu.operation && pdu.count >= 1 && pdu.count <= pdu.operation->largest,
            "a request has no more elements than one frame can carry");
    require(pdu.start >= 0 && pdu.start + pdu.count <= modbus::area_size,
            "a request stays within its area");
    require((pdu.operation->kind != modbus::Operation::Read) == asked.write,
            "a write writes and a read reads");
    const int largest_pdu = 253;
    require(modbus::buildPdu(pdu).size() <= largest_pdu &&
                modbus::answerPduSize(pdu) <= largest_pdu,
            "request and answer fit into a frame");
    if (!asked.write)
        return;
    const QByteArray back = pdu.operation->registers
                                ? modbus::reordered(pdu.values, request.element_size, request.order)
                                : modbus::unpackedBits(pdu.values, pdu.count);
    QByteArray expected = asked.data;
    if (!pdu.operation->registers) {
        for (char& byte : expected)
            byte = byte != 0 ? 1 : 0;
    }
    require(back == expected, "the values are what the host writes");
}

} // namespace

// Settings, data and address of a host's request.
void runModbusRequest(const QByteArray& input)
{
    Input next(input);
    modbus::HostRequest asked = {};
    const int choices = next.byte();
    asked.write = (choices & 1) != 0;
    asked.field1 = takeSetting(&next);
    asked.extra1 = takeSetting(&next);
    asked.extra2 = takeSetting(&next);
    asked.station = takeSetting(&next);
    asked.data_length = (choices & 2) != 0 ? next.signed32() : next.number16();
    asked.data = next.bytes(next.byte()).repeated((choices & 4) != 0 ? 9 : 1);
    const QByteArray text = next.rest();
    asked.address = (choices & 8) != 0 ? QString::fromUtf8(text) : QString::fromLatin1(text);
    checkAddress(asked.address);

    for (const auto transport : {modbus::Transport::Rtu, modbus::Transport::Tcp}) {
        modbus::Request request;
        const int status = modbus::planRequest(asked, transport, &request);
        require(status == modbus::Ok || isRefusal(status), "a refusal is one that is documented");
        if (status == modbus::Ok)
            checkPlanned(asked, request);
        else
            require(!request.pdu.operation, "a refused request is not made");
    }
}

} // namespace fuzz
