#ifndef MODBUS_LINK_H
#define MODBUS_LINK_H

#include <QByteArray>

class DrvEthernet;
class DrvSerial;
class QIODevice;

namespace modbus {

/// The link as the driver uses it while it waits. Complains neither about a link that is closed
/// nor about one that gets lost.
class Link
{
public:
    /// The serial link is used if both are given. None is owned.
    Link(DrvSerial* serial, DrvEthernet* ethernet);

    /// Whether the link is open and, as far as is known, connected.
    bool isUp() const;
    /// All that can be read at this moment without asking the network.
    QByteArray take();

private:
    DrvSerial* serial_;
    DrvEthernet* ethernet_;
    QIODevice* device_;
};

} // namespace modbus

#endif
