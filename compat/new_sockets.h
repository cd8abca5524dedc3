#ifndef COMPAT_NEW_SOCKETS_H
#define COMPAT_NEW_SOCKETS_H

#include <QHostAddress>
#include <QList>
#include <QVector>

/// Finds sockets that have come into this process since the finder was made: Qt gives no access to
/// a request's.
///
/// The kernel gives a new descriptor the lowest free number. So it is enough to note the lowest
/// numbers that are free, and to look at these later: the cost does not depend on how many
/// descriptors the process has. Where several threads open and close at once, a number may be given
/// to a new socket that was not free at first; those at which sockets were found earlier are looked
/// at, too, and which of them hold the same file as at first is known by its inode.
class NewSockets
{
public:
    /// Notes what there is. \param numbers that are of interest besides the free ones
    explicit NewSockets(const QVector<int>& numbers);

    /// Those that are connected to \a port of one of the \a addresses now.
    QVector<int> connectedTo(const QList<QHostAddress>& addresses, quint16 port) const;

private:
    struct Place
    {
        int number;
        quint64 inode; ///< Of what stood there; 0: nothing.
    };

    void noteFreeNumbers();

    QVector<Place> places_;
};

#endif
