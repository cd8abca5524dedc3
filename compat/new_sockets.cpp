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

const quint64 no_inode = 0;

/// Which file stands at a number. Whose it is does not matter, nor that its owner may
/// close it at the same moment: the thread sanitizer would take fstat() for a use of it.
quint64 inodeAt(int number)
{
    struct stat facts = {};
    return fstatat(number, "", &facts, AT_EMPTY_PATH) == 0 ? quint64(facts.st_ino) : no_inode;
}

union AnyAddress {
    sockaddr plain;
    sockaddr_in ip4;
    sockaddr_in6 ip6;
    sockaddr_storage storage;
};

bool isConnectedTo(int number, const QList<QHostAddress>& addresses, quint16 port)
{
    AnyAddress peer = {};
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
        const bool is_noted = place.inode == no_inode && place.number <= highest;
        if (!is_noted)
            places_.append(place);
    }
}

/// Takes one number after the other, and gives each back at once: the process may be short of them.
void NewSockets::noteFreeNumbers()
{
    places_.reserve(most_free_numbers);
    const int file = open("/dev/null", O_RDONLY | O_CLOEXEC);
    int number = file;
    while (number >= 0) {
        const Place place = {number, no_inode};
        places_.append(place);
        if (number != file)
            close(number);
        if (places_.size() == most_free_numbers)
            break;
        number = fcntl(file, F_DUPFD_CLOEXEC, number + 1);
    }
    if (file >= 0)
        close(file);
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
