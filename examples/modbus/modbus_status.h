#ifndef MODBUS_STATUS_H
#define MODBUS_STATUS_H

#include "framework/result_code.h"

/// \file
/// What the driver answers as `status`; docs/modbus-driver.md says what to do about each.
namespace modbus {

enum Status
{
    Ok = result_code::success,
    /// The host's stop flag was set while the driver waited.
    Stopped = result_code::stopped,
    /// Nothing came that could be an answer to this request.
    NoAnswerInTime = result_code::no_answer_in_time,

    /// The device answered with an exception: its code stands in the last byte.
    Exception = 0x400B0000,

    // Refused: nothing has been sent.
    BadAddress = 0x400B0101,        ///< Not an address, or a number or bit out of range.
    ReadOnlyArea = 0x400B0102,      ///< A write to 1x or 3x.
    BadLength = 0x400B0103,         ///< No bytes, or not a whole number of elements.
    TooLarge = 0x400B0104,          ///< More than one frame can carry.
    BeyondEnd = 0x400B0105,         ///< Reaches beyond number 65536.
    BadElementSize = 0x400B0106,    ///< `extra1` is not 0, 2 or 4.
    BadOrder = 0x400B0107,          ///< `extra2` is not 0 to 3.
    BadStation = 0x400B0108,        ///< No such station number on this kind of link.
    BroadcastRead = 0x400B0109,     ///< A broadcast cannot read, nor change a bit of a register.
    NotConnected = 0x400B010A,      ///< The link is not open.
    BadFunctionChoice = 0x400B010B, ///< `field1` is not 0 or 1.
    LineNotSilent = 0x400B010C,     ///< The serial line did not become silent.

    // Something came in time, but no answer to this request.
    BadChecksum = 0x400B0201,     ///< A damaged frame (serial).
    OtherStation = 0x400B0202,    ///< A frame of another station or unit.
    OtherFunction = 0x400B0203,   ///< A frame of another function.
    OtherContent = 0x400B0204,    ///< The answer to a write repeats something else.
    BadAnswerLength = 0x400B0205, ///< Shorter or longer than the request asks for, or cut off.
    NotModbus = 0x400B0206,       ///< The header is not one of Modbus TCP.

    LinkLost = 0x400B0301 ///< The link was closed or lost while the driver waited.
};

/// Whether \a status is one of the 256 exceptions.
inline bool isException(int status)
{
    return (status & ~0xFF) == Exception;
}

/// The driver's own codes in words, for drv_result_codes().
const result_code::Words* statusWords();

} // namespace modbus

#endif
