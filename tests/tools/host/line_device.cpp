#include "tests/tools/host/line_device.h"

#include <QCoreApplication>
#include <QFile>
#include <QHostAddress>
#include <QTcpSocket>

namespace {

/// An address of the machine itself that only this process uses: so the port stays ours while the
/// device is away.
QHostAddress ownAddress()
{
    const quint32 process = quint32(QCoreApplication::applicationPid());
    return QHostAddress((127U << 24) | (1U << 23) | ((process & 0x3FFFFF) << 1) | 1);
}

const int look_milliseconds = 2;

} // namespace

QByteArray LineDevice::answerTo(const QByteArray& bytes)
{
    QByteArray answer;
    pending_ += bytes;
    for (int end = pending_.indexOf('\n'); end >= 0; end = pending_.indexOf('\n')) {
        const QByteArray line = pending_.left(end);
        pending_.remove(0, end + 1);
        lines_ << line;
        answer += answerToLine(line);
    }
    return answer;
}

QByteArray LineDevice::answerToLine(const QByteArray& line)
{
    if (line.startsWith('x'))
        return line.mid(1);
    const QList<QByteArray> words = line.split(' ');
    const int length = words.value(3).toInt();
    const QByteArray address = words.value(6);
    const QByteArray argument = QByteArray::fromHex(address.mid(address.indexOf(':') + 1));
    if (address == "close")
        hangUp();
    if (address == "silent" || address == "close")
        return QByteArray();
    if (words.first() == "w") {
        memory_[address] = QByteArray::fromHex(words.value(7));
        return "ok";
    }
    if (address.startsWith("hex:"))
        return argument;
    if (address.startsWith("long:"))
        return argument + '\0';
    if (address == "params")
        return words.mid(1, 5).join(' ').leftJustified(length, '\0');
    return memory_.value(address, QByteArray(length, '\0'));
}

TcpLineDevice::TcpLineDevice()
{
    connect(&server_, &QTcpServer::newConnection, this, &TcpLineDevice::onConnection);
    comeBack();
    port_ = server_.serverPort();
}

QString TcpLineDevice::link() const
{
    return QStringLiteral("tcp:%1:%2").arg(ownAddress().toString()).arg(port_);
}

void TcpLineDevice::leave()
{
    server_.close();
    hangUp();
}

void TcpLineDevice::comeBack()
{
    if (!server_.listen(ownAddress(), port_))
        qFatal("cannot listen: %s", qPrintable(server_.errorString()));
}

void TcpLineDevice::hangUp()
{
    for (QTcpSocket* socket : findChildren<QTcpSocket*>())
        socket->disconnectFromHost();
}

void TcpLineDevice::onConnection()
{
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
        ++connections_;
        socket->setParent(this);
        connect(socket, &QTcpSocket::readyRead, this,
                [this, socket] { socket->write(answerTo(socket->readAll())); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

SerialLineDevice::SerialLineDevice()
{
    connect(&timer_, &QTimer::timeout, this, &SerialLineDevice::look);
    timer_.start(look_milliseconds);
    comeBack();
}

/// A link to the pty, whose own name changes each time.
QString SerialLineDevice::path() const
{
    return folder_.filePath(QStringLiteral("port"));
}

QString SerialLineDevice::link() const
{
    return QStringLiteral("serial:%1,115200,8N1").arg(path());
}

void SerialLineDevice::leave()
{
    // In this order: a free pty's name may be somebody else's the next moment.
    QFile::remove(path());
    pty_.reset();
}

void SerialLineDevice::comeBack()
{
    pty_ = std::make_unique<Pty>();
    if (!pty_->isValid() || !QFile::link(pty_->portName(), path()))
        qFatal("cannot make a pseudo terminal");
}

void SerialLineDevice::look()
{
    if (!pty_)
        return;
    const QByteArray answer = answerTo(pty_->take());
    if (!answer.isEmpty())
        pty_->send(answer);
}
