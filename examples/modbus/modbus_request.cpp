#include "modbus_request.h"

#include "modbus_address.h"
#include "modbus_status.h"
#include "modbus_value.h"

namespace modbus {

namespace {

const int always_many = 1; // field1

const int last_station_of_rtu = 247;
const int last_station_of_tcp = 255;

/// The checks of what does not depend on the address.
int checkSettings(const HostRequest& asked)
{
    if (asked.field1 != 0 && asked.field1 != always_many)
        return BadFunctionChoice;
    if (!isElementSize(asked.extra1))
        return BadElementSize;
    return isOrder(asked.extra2) ? Ok : BadOrder;
}

/// How many bits or registers so many bytes of the host are; 0 if they are no whole number.
int countOf(const Address& address, int bytes, int element_size)
{
    if (address.bit >= 0)
        return bytes == 1 ? 1 : 0;
    if (!address.area->registers)
        return bytes;
    return bytes % element_size == 0 ? bytes / 2 : 0;
}

const Operation* chooseOperation(const HostRequest& asked, const Area& area, int count)
{
    if (!asked.write)
        return operationOf(area.read);
    const bool one = count == 1 && asked.field1 != always_many;
    return operationOf(one ? area.write_one : area.write_many);
}

int checkStation(const HostRequest& asked, Transport transport, Request* request)
{
    const bool rtu = transport == Transport::Rtu;
    if (asked.station < 0 || asked.station > (rtu ? last_station_of_rtu : last_station_of_tcp))
        return BadStation;
    request->station = asked.station;
    request->is_broadcast = rtu && asked.station == 0;
    return request->is_broadcast && !asked.write ? BroadcastRead : Ok;
}

int checkExtent(const PduRequest& pdu)
{
    if (pdu.count <= 0)
        return BadLength;
    if (pdu.count > pdu.operation->largest)
        return TooLarge;
    return pdu.start + pdu.count > area_size ? BeyondEnd : Ok;
}

} // namespace

int planRequest(const HostRequest& asked, Transport transport, Request* request)
{
    Address address;
    int status = parseAddress(asked.address, &address);
    if (status != Ok)
        return status;
    if (asked.write && address.area->write_one == 0)
        return ReadOnlyArea;
    if (asked.write && address.bit >= 0)
        return BadAddress;
    status = checkSettings(asked);
    if (status != Ok)
        return status;

    Request planned;
    planned.element_size = asked.extra1 == 4 ? 4 : 2;
    planned.order = asked.extra2;
    planned.bit = address.bit;
    planned.pdu.start = address.start;
    planned.pdu.count =
        countOf(address, asked.write ? asked.data.size() : asked.data_length, planned.element_size);
    planned.pdu.operation = chooseOperation(asked, *address.area, planned.pdu.count);
    status = checkExtent(planned.pdu);
    if (status == Ok)
        status = checkStation(asked, transport, &planned);
    if (status != Ok)
        return status;
    if (asked.write) {
        planned.pdu.values = address.area->registers
                                 ? reordered(asked.data, planned.element_size, planned.order)
                                 : packedBits(asked.data);
    }
    *request = planned;
    return Ok;
}

QByteArray hostBytes(const Request& request, const QByteArray& pdu)
{
    const QByteArray values = answerValues(pdu);
    if (request.bit >= 0)
        return QByteArray(1, static_cast<char>((numberAt(values, 0) >> request.bit) & 1));
    if (!request.pdu.operation->registers)
        return unpackedBits(values, request.pdu.count);
    return reordered(values, request.element_size, request.order);
}

} // namespace modbus
