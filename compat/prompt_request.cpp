#include "compat/prompt_request.h"

#include "compat/new_sockets.h"

#include <QNetworkReply>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

const int most_numbers = 32;
const int https_port = 443;

bool tellsWhenEncrypted(const QUrl& service)
{
#if QT_VERSION >= 0x050100
    return service.scheme() == QLatin1String("https");
#else
    Q_UNUSED(service);
    return false;
#endif
}

} // namespace

void SocketNumbers::add(int number)
{
    if (numbers_.contains(number))
        return;
    if (numbers_.size() < most_numbers) {
        numbers_.append(number);
        return;
    }
    numbers_[next_] = number;
    next_ = (next_ + 1) % most_numbers;
}

PromptRequest::PromptRequest(const QUrl& service, SocketNumbers* numbers)
    : host_(service.host()),
      port_(quint16(service.port(https_port))),
      numbers_(numbers)
{
    if (tellsWhenEncrypted(service))
        sockets_.reset(new NewSockets(numbers->all()));
}

PromptRequest::~PromptRequest() {}

void PromptRequest::watch(QNetworkReply* reply)
{
    if (sockets_)
        connect(reply, SIGNAL(encrypted()), this, SLOT(findAddresses()));
}

/// A name has just been looked up for the connection, so Qt knows its addresses still.
void PromptRequest::findAddresses()
{
    const QHostAddress address(host_);
    if (!address.isNull())
        hasten(QList<QHostAddress>() << address);
    else
        QHostInfo::lookupHost(host_, this, SLOT(takeAddresses(QHostInfo)));
}

void PromptRequest::takeAddresses(const QHostInfo& info)
{
    hasten(info.addresses());
}

void PromptRequest::hasten(const QList<QHostAddress>& addresses)
{
    const QVector<int> found = sockets_->connectedTo(addresses, port_);
    for (int i = 0; i < found.size(); ++i) {
        const int on = 1;
        setsockopt(found.at(i), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        numbers_->add(found.at(i));
    }
}
