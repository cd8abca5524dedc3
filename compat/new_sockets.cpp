#include "compat/new_sockets.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A request opens two descriptors before its socket; the others are for what else the process does
/// meanwhile.
const int most_free_numbers = 16;

/// Which file stands at a number; 0: none.
quint64 inodeAt(int number)
{
    struct stat facts;
    return fstat(number, &facts) == 0 ? quint64(facts.st_ino) : 0;
}

union AnyAddress {
    sockaddr plain;
    sockaddr_in ip4;
    sockaddr_in6 ip6;
    sockaddr_storage storage;
};

bool isConnectedTo(int number, const QList<QHostAddress>& addresses, quint16 port)
{
    AnyAddress peer;
    socklen_t size = sizeof peer;
    if (getpeername(number, &peer.plain, &size) != 0)
        return false;
    const bool is_ip4 = peer.plain.sa_family == AF_INET;
    if (!is_ip4 && peer.plain.sa_family != AF_INET6)
        return false;
    const quint16 peer_port = is_ip4 ? peer.ip4.sin_port : peer.ip6.sin6_port;
    return ntohs(peer_port) == port && addresses.contains(QHostAddress(&peer.plain));
}

} // namespace

NewSockets::NewSockets(const QVector<int>& numbers)
{
    noteFreeNumbers();
    const int highest = places_.isEmpty() ? -1 : places_.last().number;
    for (int i = 0; i < numbers.size(); ++i) {
        const Place place = {numbers.at(i), inodeAt(numbers.at(i))};
        const bool is_noted = place.inode == 0 && place.number <= highest;
        if (!is_noted)
            places_.append(place);
    }
}

/// Takes the numbers, and gives them back.
void NewSockets::noteFreeNumbers()
{
    places_.reserve(most_free_numbers);
    int number = open("/dev/null", O_RDONLY | O_CLOEXEC);
    while (number >= 0) {
        const Place place = {number, 0};
        places_.append(place);
        const bool is_last = places_.size() == most_free_numbers;
        number = is_last ? -1 : fcntl(number, F_DUPFD_CLOEXEC, number);
    }
    for (int i = 0; i < places_.size(); ++i)
        close(places_.at(i).number);
}

QVector<int> NewSockets::connectedTo(const QList<QHostAddress>& addresses, quint16 port) const
{
    QVector<int> found;
    for (int i = 0; i < places_.size(); ++i) {
        const Place& place = places_.at(i);
        if (isConnectedTo(place.number, addresses, port) && inodeAt(place.number) != place.inode)
            found.append(place.number);
    }
    return found;
}
