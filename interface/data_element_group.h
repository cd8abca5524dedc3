#ifndef INTERFACE_DATA_ELEMENT_GROUP_H
#define INTERFACE_DATA_ELEMENT_GROUP_H

#include <QString>

/// The host's record of one element of a mixed read, sent in a list with
/// `DrvInterface::SigGetValuesByteArrayMix`. No driver of this library serves mixed reads; the
/// members are those that a read of a single element needs.
struct DataElementGroup
{
    /// Names the data, as `AddrData::address` does.
    QString address;
    /// Bytes that the host expects. Default 0.
    int data_length = 0;
};

#endif
