#ifndef COMPAT_PROMPT_REQUEST_H
#define COMPAT_PROMPT_REQUEST_H

#include <QHostAddress>
#include <QHostInfo>
#include <QList>
#include <QObject>
#include <QScopedPointer>
#include <QUrl>
#include <QVector>

class NewSockets;
class QNetworkReply;

/// Where sockets of a client's requests were found: the numbers of their descriptors.
class SocketNumbers
{
public:
    SocketNumbers() : next_(0) {}

    void add(int number);
    const QVector<int>& all() const { return numbers_; }

private:
    QVector<int> numbers_;
    int next_; ///< Which one the next number replaces.
};

/// Has a request leave as soon as the TLS handshake is done.
///
/// Qt leaves Nagle's algorithm on, which holds the request until the service has acknowledged the
/// last message of the handshake. With TLS 1.3, and with the short handshake of TLS 1.2, that one
/// is the client's: so the request waits for a round trip, or the 40 ms and more of a delayed
/// acknowledgement. Setting TCP_NODELAY, when the handshake is done, sends what waits already, too.
/// The bytes on the wire are the same.
///
/// Qt gives no access to the socket, but tells when the handshake is done. A socket that has come
/// into this process since the request began and is connected to the service's address and port is
/// taken for the request's; there may be several where several drivers have the same service, and
/// all of them profit. Of what the host has open, nothing else is touched: no socket to another
/// port or address, none that was there before. When nothing is found, nothing happens: the request
/// is slower, and complete.
///
/// Nothing happens either with plain HTTP, and with a Qt that does not tell (before 5.1).
class PromptRequest : public QObject
{
    Q_OBJECT

public:
    /// To be made before the request begins.
    /// \param numbers of the client; not owned
    PromptRequest(const QUrl& service, SocketNumbers* numbers);
    ~PromptRequest();

    /// To be called in the thread that has posted, before its event loop runs again.
    void watch(QNetworkReply* reply);

private Q_SLOTS:
    void findAddresses();
    void takeAddresses(const QHostInfo& info);

private:
    Q_DISABLE_COPY(PromptRequest)

    void hasten(const QList<QHostAddress>& addresses);

    QString host_;
    quint16 port_;
    SocketNumbers* numbers_;
    QScopedPointer<NewSockets> sockets_;
};

#endif
