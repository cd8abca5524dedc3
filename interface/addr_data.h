#ifndef INTERFACE_ADDR_DATA_H
#define INTERFACE_ADDR_DATA_H

#include <QString>

/// The host's record of one request.
///
/// Travels as `QSharedPointer<AddrData>` with every read and write. The host fills it and owns it;
/// drivers only read it. The cloud driver uses `address` and `data_length`; the other members have
/// the meaning that a protocol driver and its host agree on.
struct AddrData
{
    /// First protocol-specific number (for example a memory area). Default 0.
    int field1 = 0;
    /// Names the data: for the cloud driver the `name` of a served data item, compared whole and
    /// case-sensitively.
    QString address;
    /// Bytes that the host expects. The cloud driver pads a text up to this length with zero bytes
    /// and never cuts one. Default 0.
    int data_length = 0;
    /// Second protocol-specific number. Default 0.
    int extra1 = 0;
    /// Third protocol-specific number. Default 0.
    int extra2 = 0;
};

#endif
