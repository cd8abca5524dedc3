#include "modbus_status.h"

namespace modbus {

const result_code::Words* statusWords()
{
    static const result_code::Words words[] = {
        {Exception + 1, Exception + 1, "the device does not know the function (exception 1)"},
        {Exception + 2, Exception + 2, "the device has no such address (exception 2)"},
        {Exception + 3, Exception + 3, "the device refuses the value or the length (exception 3)"},
        {Exception + 4, Exception + 4, "the device failed (exception 4)"},
        {Exception + 6, Exception + 6, "the device is busy (exception 6)"},
        {Exception + 10, Exception + 10, "the gateway has no path to the device (exception 10)"},
        {Exception + 11, Exception + 11,
         "the device behind the gateway does not answer (exception 11)"},
        {Exception, Exception + 0xFF, "the device answered with exception"},
        {BadAddress, BadAddress, "no address of Modbus, or a number or bit out of range"},
        {ReadOnlyArea, ReadOnlyArea, "this area cannot be written"},
        {BadLength, BadLength, "no bytes, or not a whole number of elements"},
        {TooLarge, TooLarge, "more than one frame can carry"},
        {BeyondEnd, BeyondEnd, "reaches beyond number 65536"},
        {BadElementSize, BadElementSize, "the element size (extra1) is not 0, 2 or 4"},
        {BadOrder, BadOrder, "the byte order (extra2) is not 0 to 3"},
        {BadStation, BadStation, "no such station number on this kind of link"},
        {BroadcastRead, BroadcastRead, "a broadcast cannot read, nor change a bit of a register"},
        {NotConnected, NotConnected, "the link is not open"},
        {BadFunctionChoice, BadFunctionChoice, "the choice of function (field1) is not 0 or 1"},
        {LineNotSilent, LineNotSilent, "the serial line did not become silent"},
        {BadChecksum, BadChecksum, "a damaged frame came"},
        {OtherStation, OtherStation, "a frame of another station or unit came"},
        {OtherFunction, OtherFunction, "a frame of another function came"},
        {OtherContent, OtherContent, "the answer to a write repeats something else"},
        {BadAnswerLength, BadAnswerLength,
         "the answer is shorter or longer than the request asks for, or cut off"},
        {NotModbus, NotModbus, "the answer has no header of Modbus TCP"},
        {LinkLost, LinkLost, "the link was closed or lost while the driver waited"},
        {}};
    return words;
}

} // namespace modbus
